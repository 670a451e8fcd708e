#include "calibration/tpreper.h"

#include <QtTest>

#include <cmath>

using Emfs = std::array<float, 3>;
using Table = std::map<unsigned short, float>;

namespace
{

constexpr Emfs typical = {3.447F, 5.860F, 10.575F};

Table recalculated(Emfs emfs, Table result = {})
{
    tpReper::getEDSTable(emfs.data(), result);
    return result;
}

Table recalculated(std::size_t point, float emf, const Table &before = {})
{
    Emfs emfs = typical;
    emfs[point] = emf;
    return recalculated(emfs, before);
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
        QVERIFY(fixedPointTables() ==
                (std::array{expected["zinc"], expected["aluminium"], expected["copper"]}));
    }

    /** Whose last digit tells the order in which it is summed up. */
    void sum()
    {
        const Table result = recalculated({3.456F, 5.845F, 10.542F}, {{20, 0.1F}});
        QStringList numbers;
        for (const auto &[celsius, emf] : result)
            numbers << QString("%1:%2").arg(celsius).arg(double(emf), 0, 'g', 9);
        QCOMPARE(numbers.join(' '),
                 QString("300:2.34450006 400:3.27109981 500:4.23210001 600:5.22779989 "
                         "700:6.25790024 800:7.32259989 900:8.42179966 1000:9.55560017 "
                         "1100:10.7238998 1200:11.9187994"));
    }

    void ties()
    {
        // a float lies exactly halfway between 48 pairs of neighbours, the last one of zinc among
        // them
        int found = 0;
        int foundAtTheEnd = 0;
        for (std::size_t point = 0; point < typical.size(); ++point) {
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
                found += int(isTie);
                foundAtTheEnd += int(isTie && isLast);
            }
        }
        QCOMPARE(QString("%1 %2").arg(found).arg(foundAtTheEnd), QString("48 1"));
    }

    void ends()
    {
        const Table before = {{7, 7.0F}};
        for (std::size_t point = 0; point < typical.size(); ++point) {
            const float first = fixedPointTables()[point].begin()->first;
            const float last = fixedPointTables()[point].rbegin()->first;
            for (const float emf : {first, last})
                QVERIFY(recalculated(point, emf, before) != before);
            for (const float emf :
                 {std::nextafter(first, 0.0F), std::nextafter(last, 99.0F), -first, std::nanf("")})
                QVERIFY(recalculated(point, emf, before) == before);
        }
    }
};

QTEST_GUILESS_MAIN(TestTpReper)
#include "tst_tpreper.moc"
