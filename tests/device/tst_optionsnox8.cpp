#include "device/optionsnox8.h"

#include <QtTest>

class TestOptionsNox8 : public QObject
{
    Q_OBJECT
private slots:
    void models_data();
    void models();
    void typeLists();
    void units();
    void unknownTypeChangesNothing();
    void numberAndName();
    void identityAsksToBeWrittenOnceItIsKnown();
    void olderTypesHaveNoShortCircuit();
    void channelSettersCompare();
};

namespace
{

/** The image's signals by name, in the order in which they were fired. */
class SignalLog
{
public:
    explicit SignalLog(const optionsNOX8 &image)
    {
        const auto note = [this](const char *name) { return [this, name] { names << name; }; };
        using Image = optionsNOX8;
        QObject::connect(&image, &Image::onDevChange, &context, note("dev"));
        QObject::connect(&image, &Image::onRefChange, &context, note("ref"));
        QObject::connect(&image, &Image::onIdentChange, &context, note("ident"));
        QObject::connect(&image, &Image::onIdentApply, &context, note("write ident"));
        QObject::connect(&image, &Image::onSNApply, &context, note("write number"));
        QObject::connect(&image, &Image::onChChange, &context,
                         [this](quint8 ch) { names << "ch" + QString::number(ch); });
    }
    QStringList take() { return std::exchange(names, {}); }

private:
    QObject context;
    QStringList names;
};

} // namespace

void TestOptionsNox8::models_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("nameWithoutRevision");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("family");
    QTest::addColumn<bool>("extended");

    const auto row = [](quint32 type, const char *name, const char *base, int channels, int family,
                        bool extended) {
        QTest::newRow(name) << type << QString(name) << QString(base) << channels << family
                            << extended;
    };
    row(0x00, "--", "--", 0, 0, false);
    row(0x01, "NOX A", "NOX A", 8, 0, false);
    row(0x11, "NOX B", "NOX B", 8, 1, false);
    row(0x21, "NOX C", "NOX C", 8, 2, false);
    row(0x22, "NOX CM", "NOX CM", 8, 2, false);
    row(0x31, "NOX D", "NOX D", 8, 3, false);
    row(0x41, "NOX CM1", "NOX CM1", 16, 4, false);
    row(0x0950AA0F, "NOX CM rev.4", "NOX CM", 8, 2, true);
    row(0x0960AA0F, "NOX CM1 rev.4", "NOX CM1", 16, 4, true);
    row(0x0970AA0F, "NOX D rev.4", "NOX D", 8, 3, true);
}

void TestOptionsNox8::models()
{
    QFETCH(quint32, type);
    optionsNOX8 image;
    QCOMPARE(image.setDevType(type), type != 0);
    QTEST(image.getDevTypeStr(true), "name");
    QTEST(image.getDevTypeStr(false), "nameWithoutRevision");
    QTEST(int(image.getDevChCount()), "channels");
    QTEST(int(image.getDevFamily()), "family");
    QFETCH(bool, extended);
    QCOMPARE(image.getDevRev(), quint16(extended ? 0xAA0F : 0));
}

void TestOptionsNox8::typeLists()
{
    const optionsNOX8 image;
    QCOMPARE(image.getTypeList(false).size(), 7);
    QCOMPARE(image.getTypeList(true).size(), 10);
    QVERIFY(!image.getTypeList(false).contains(0x0950AA0F));
}

void TestOptionsNox8::units()
{
    optionsNOX8 image;
    QCOMPARE(image.getDim('A'), QStringLiteral("Ω"));
    QCOMPARE(image.getDim('B'), QStringLiteral("°С"));
    QCOMPARE(image.getDim('C'), QStringLiteral("мВ"));
    QCOMPARE(image.getDim('Z'), QStringLiteral("-"));

    QCOMPARE(image.getChMeasTypeName(quint8(0)), QStringLiteral("-"));
    image.setDevType(0x11);
    QCOMPARE(image.getChMeasTypeName(quint8(7)), QStringLiteral("Ω"));
    QCOMPARE(image.getChMeasTypeName(quint8(8)), QStringLiteral("-"));
    image.setChMeasType(2, measTemperatureCustom, "  K and more text ");
    QCOMPARE(image.getChMeasTypeName(quint8(2)), QStringLiteral("K and more"));
}

void TestOptionsNox8::unknownTypeChangesNothing()
{
    optionsNOX8 image;
    image.setDevType(0x31);
    SignalLog log(image);
    QVERIFY(!image.setDevType(0x05));
    QVERIFY(image.setDevType(0x31));
    QCOMPARE(image.devType, 0x31u);
    QCOMPARE(log.take(), QStringList());

    image.devType = 0x05; // as a damaged file may leave it
    QCOMPARE(image.getDevTypeStr(true), QStringLiteral("-"));
    QCOMPARE(image.getDevTypeStr(false), QString());
    QCOMPARE(int(image.getDevChCount()), 0);
}

void TestOptionsNox8::numberAndName()
{
    optionsNOX8 image;
    QCOMPARE(image.getDevNumberStr(), QStringLiteral("--"));
    image.setDevType(0x0950AA0F);
    image.setDevNumber(42);
    QCOMPARE(image.getDevNumberStr(), QStringLiteral("0042"));
    QCOMPARE(image.getDevName(false), QStringLiteral("NOX CM rev.4"));
    QCOMPARE(image.getDevName(true), QStringLiteral("NOX CM rev.4 № 0042"));
    image.devName = "Баня 1";
    QCOMPARE(image.getDevName(true), QStringLiteral("Баня 1"));
    image.setDevType(0x22); // without a name of its own
    QCOMPARE(image.getDevName(false), QStringLiteral("NOX CM"));
    image.setDevNumber(54321);
    QCOMPARE(image.getDevNumberStr(), QStringLiteral("54321"));
}

void TestOptionsNox8::identityAsksToBeWrittenOnceItIsKnown()
{
    optionsNOX8 image;
    SignalLog log(image);
    image.setDevType(0x11);
    QCOMPARE(log.take(), (QStringList{"ident", "dev", "ref"}));
    QVERIFY(image.identApplyPending);

    image.identValid = true;
    image.setDevNumber(7);
    QCOMPARE(log.take(), (QStringList{"write ident", "ident", "dev"}));
    QVERIFY(!image.identApplyPending);
    image.setDevType(0x0960AA0F);
    QCOMPARE(log.take(), (QStringList{"write ident", "ident", "dev", "ref"}));
    image.setDevNumber(8);
    QCOMPARE(log.take(), (QStringList{"write number", "ident", "dev"}));
    image.setDevNumber(8);
    QCOMPARE(log.take(), (QStringList{"ident", "dev"}));
}

void TestOptionsNox8::olderTypesHaveNoShortCircuit()
{
    optionsNOX8 image;
    image.devCompensTP = 2;
    image.setDevType(0x22);
    QCOMPARE(int(image.devCompensTP), 2);
    QCOMPARE(int(image.devZakorotka), 1);
    image.setDevType(0x21);
    QCOMPARE(int(image.devCompensTP), 1);
    QCOMPARE(int(image.devZakorotka), 0);
}

void TestOptionsNox8::channelSettersCompare()
{
    optionsNOX8 image;
    image.setDevType(0x31);
    SignalLog log(image);
    image.setChOnOff(3, 1);
    image.setChOnOff(8, 0);
    image.setChDimCust(3, " ");
    QCOMPARE(log.take(), QStringList());
    image.setChOnOff(3, 0);
    image.setChDimCust(4, "K");
    QCOMPARE(log.take(), (QStringList{"ch3", "ch4"}));
    QCOMPARE(int(image.getCh(3).onOff), 0);
    QCOMPARE(int(image.getCh(8).onOff), 1);
}

QTEST_GUILESS_MAIN(TestOptionsNox8)
#include "tst_optionsnox8.moc"
