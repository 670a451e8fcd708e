#include "device/bfloat.h"
#include "device/bword.h"
#include "device/instrumentblocks.h"
#include "device/windows1251.h"

#include <QDateTime>
#include <QtTest>

class TestCodecs : public QObject
{
    Q_OBJECT
private slots:
    void texts_data();
    void texts();
    void bytes();
    void shortBuffers();
    void codePage();
    void moments_data();
    void moments();
};

void TestCodecs::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("value");
    QTest::addColumn<bool>("ok");

    QTest::newRow("point") << "12.5" << 12.5F << true;
    QTest::newRow("comma") << "12,5" << 12.5F << true;
    QTest::newRow("blanks around") << " 7\t" << 7.0F << true;
    QTest::newRow("exponent with a comma") << "-5,775e-7" << -5.775e-7F << true;
    QTest::newRow("nothing") << "  " << 0.0F << true;
    QTest::newRow("minus alone") << " - " << 0.0F << true;
    QTest::newRow("letters") << "abc" << 0.0F << false;
    QTest::newRow("two numbers") << "1 2" << 0.0F << false;
    QTest::newRow("point and comma") << "1.000,5" << 0.0F << false;
    QTest::newRow("beyond single precision") << "1e39" << 0.0F << false;
}

void TestCodecs::texts()
{
    QFETCH(QString, text);
    QFETCH(float, value);
    bool ok = false;
    QCOMPARE(bFloat::str2Float(text, &ok), value);
    QTEST(ok, "ok");
    bFloat number(99.0F);
    QTEST(number.setFloat(text), "ok");
    QCOMPARE(number.value, value);
    QCOMPARE(bFloat::str2Float(text), value);
}

void TestCodecs::bytes()
{
    const QByteArray ten = QByteArray::fromHex("41200000");
    const QByteArray buffer = QByteArray::fromHex("0000") + ten + ten;
    QCOMPARE(bFloat(10.0F).getByte(), ten);
    QCOMPARE(bFloat(10.0F, bFloat::LeastSignificantFirst).getByte().toHex(),
             QByteArray("00002041"));

    bFloat number;
    number.setFloat(&buffer, 1, 2);
    QCOMPARE(number.value, 10.0F);
    number.mode = bFloat::LeastSignificantFirst;
    number.setFloat(&ten, 0);
    QCOMPARE(number.getByte(), ten);
    QCOMPARE(bFloat::getFloat(&buffer, 0, 2), 10.0F);

    const QByteArray word = QByteArray::fromHex("00000000") + QByteArray::fromHex("0faa5009");
    QCOMPARE(bWord::getWord(&word, 1), 0x0950AA0F);
}

void TestCodecs::shortBuffers()
{
    bFloat number(5.0F);
    bool ok = true;
    const QByteArray fifteen(15, 'x');
    number.setFloat(&fifteen, 3, 0, &ok);
    QVERIFY(!ok);
    number.setFloat(&fifteen, -1);
    QCOMPARE(number.value, 5.0F);
    const QByteArray sixteen = QByteArray(12, 'x') + QByteArray::fromHex("41200000");
    number.setFloat(&sixteen, 3, 0, &ok);
    QVERIFY(ok);
    QCOMPARE(number.value, 10.0F);
    QCOMPARE(bFloat::getFloat(&sixteen, 3, 1), 0.0F);
    QCOMPARE(bWord::getWord(&fifteen, 3), 0);
}

void TestCodecs::codePage()
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all += char(byte);
    QCOMPARE(toWindows1251(fromWindows1251(all)), all);
    QCOMPARE(toWindows1251("№ °Ё").toHex(), QByteArray("b920b0a8"));
    QCOMPARE(toWindows1251("a☃b"), QByteArray("a?b"));

    QCOMPARE(toFixedText("Баня", 3).toHex(), QByteArray("c1e0ed"));
    QCOMPARE(toCountedText("Баня", 6).toHex(), QByteArray("04c1e0edff0000"));
    QCOMPARE(toCountedText("Баня", 3).toHex(), QByteArray("03c1e0ed"));
    QCOMPARE(fromCountedText(QByteArray("\xFF\x61\x62\x63", 4), 0, 3), QStringLiteral("abc"));
}

void TestCodecs::moments_data()
{
    QTest::addColumn<QDateTime>("moment");
    QTest::addColumn<QByteArray>("hex");

    QTest::newRow("a Tuesday") << QDateTime({2026, 11, 24}, {17, 5, 9})
                               << QByteArray("11050900180b1a02");
    QTest::newRow("a Sunday, the year before 2000")
        << QDateTime({1999, 12, 26}, {0, 0, 59}) << QByteArray("00003b001a0cff07");
}

void TestCodecs::moments()
{
    QFETCH(QDateTime, moment);
    QTEST(encodeDateTime(moment).toHex(), "hex");
}

QTEST_GUILESS_MAIN(TestCodecs)
#include "tst_codecs.moc"
