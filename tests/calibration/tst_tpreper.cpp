#include "calibration/tpreper.h"

#include <QtTest>

#include <cmath>

using Emfs = std::array<float, 3>;
using Table = std::map<unsigned short, float>;
Q_DECLARE_METATYPE(Emfs)

namespace
{

constexpr Emfs typical = {3.447F, 5.860F, 10.575F};

Table recalculated(Emfs emfs, Table result = {})
{
    tpReper::getEDSTable(emfs.data(), result);
    return result;
}

Table recalculated(std::size_t point, float emf)
{
    Emfs emfs = typical;
    emfs[point] = emf;
    return recalculated(emfs);
}

/** The numbers, as the editor shows them. */
QString textsOf(const Table &table)
{
    QStringList texts;
    for (const auto &entry : table)
        texts << QString::number(entry.second, 'f', 4);
    return texts.join(' ');
}

} // namespace

class TestTpReper : public QObject
{
    Q_OBJECT
private slots:

    // the file is made by tests/support/fixedpoints.py
    void tables()
    {
        QFile file(QFINDTESTDATA("data/fixedpoints.csv"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QList<QByteArray> heads = file.readLine().trimmed().split(',');
        std::map<QByteArray, FixedPointTable> expected;
        while (!file.atEnd()) {
            const QList<QByteArray> fields = file.readLine().trimmed().split(',');
            for (int i = 2; i < heads.size(); ++i)
                expected[fields.at(0)][fields.at(1).toFloat()][heads.at(i).toUShort()] =
                    fields.at(i).toFloat();
        }
        QVERIFY(fixedPointTables()[0] == expected["zinc"]);
        QVERIFY(fixedPointTables()[1] == expected["aluminium"]);
        QVERIFY(fixedPointTables()[2] == expected["copper"]);
    }

    void examples_data()
    {
        QTest::addColumn<Emfs>("emfs");
        QTest::addColumn<QString>("texts");
        QTest::addColumn<QString>("at1200"); // all digits: they tell the order of the sum

        const QString texts =
            "2.3199 3.2596 4.2322 5.2376 6.2758 7.3469 8.4508 9.5874 10.7569 11.9513";
        QTest::newRow("between keys") << Emfs{3.4469F, 5.8601F, 10.5748F} << texts << "11.9512987";
        QTest::newRow("lowest")
            << Emfs{3.437F, 5.842F, 10.542F}
            << "2.3138 3.2503 4.2196 5.2217 6.2565 7.3241 8.4245 9.5575 10.7234 11.9140"
            << "11.9140005";
        QTest::newRow("highest")
            << Emfs{3.460F, 5.877F, 10.607F}
            << "2.3322 3.2725 4.2462 5.2534 6.2939 7.3677 8.4750 9.6157 10.7898 11.9893"
            << "11.9892988";
        QTest::newRow("sum where the order shows")
            << Emfs{3.456F, 5.845F, 10.542F}
            << "2.3445 3.2711 4.2321 5.2278 6.2579 7.3226 8.4218 9.5556 10.7239 11.9188"
            << "11.9187994";
    }

    void examples()
    {
        QFETCH(Emfs, emfs);
        const Table result = recalculated(emfs, {{20, 0.1F}});
        QTEST(textsOf(result), "texts");
        QCOMPARE(result.begin()->first, 300);
        QTEST(QString::number(result.at(1200), 'g', 9), "at1200");
    }

    void ties()
    {
        // a float lies exactly halfway between 16 pairs of zinc, the last one among them, 5 of
        // aluminium and 27 of copper
        std::array<int, 3> found = {};
        int foundAtTheEnd = 0;
        for (std::size_t point = 0; point < found.size(); ++point) {
            const FixedPointTable &table = fixedPointTables()[point];
            for (auto low = table.begin(), high = std::next(low); high != table.end();
                 ++low, ++high) {
                float emf = low->first;
                while (emf - low->first < high->first - emf)
                    emf = std::nextafter(emf, high->first);
                const bool isTie = emf - low->first == high->first - emf;
                const bool isLast = std::next(high) == table.end();
                const Table lower = recalculated(point, low->first);
                const Table upper = recalculated(point, high->first);
                QVERIFY(lower != upper);
                QVERIFY(recalculated(point, std::nextafter(emf, low->first)) == lower);
                QVERIFY(recalculated(point, emf) == (isTie && !isLast ? lower : upper));
                QVERIFY(recalculated(point, std::nextafter(emf, high->first)) == upper);
                found[point] += int(isTie);
                foundAtTheEnd += int(isTie && isLast);
            }
        }
        QCOMPARE(found, (std::array<int, 3>{16, 5, 27}));
        QCOMPARE(foundAtTheEnd, 1);
    }

    void ends()
    {
        const Table before = {{7, 7.0F}};
        for (std::size_t point = 0; point < typical.size(); ++point) {
            const float first = fixedPointTables()[point].begin()->first;
            const float last = fixedPointTables()[point].rbegin()->first;
            for (const float emf : {first, last, std::nextafter(first, 0.0F),
                                    std::nextafter(last, 99.0F), -first, std::nanf("")}) {
                Emfs emfs = typical;
                emfs[point] = emf;
                QCOMPARE(recalculated(emfs, before) != before, emf == first || emf == last);
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestTpReper)
#include "tst_tpreper.moc"
