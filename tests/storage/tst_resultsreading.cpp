#include "device/windows1251.h"
#include "plot/qwtnox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/resultsexport.h"
#include "storage/resultsreading.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

const QDateTime start({2026, 11, 24}, {7, 5, 9});

} // namespace

/** Reading into the plot, while anything may happen to the instrument. */
class TestResultsReading : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void shortFile();
    void refused();
    void interrupted_data();
    void interrupted();
    void another();
    void picture();

private:
    /** A file with this many rows of two channels. */
    QString fileWith(int rows);
    bool read(const QString &fileName, int index)
    {
        return m_reading.open(fileName) && m_reading.start(index);
    }

    QTemporaryDir m_directory;
    noxSql m_database{QString()};
    NOXSerialPort m_port;
    noxList m_registry{&m_port, &m_database};
    QwtNOX m_plot;
    ResultsReading m_reading{&m_registry, &m_plot};
};

void TestResultsReading::init()
{
    for (const int index : m_registry.indices())
        m_registry.rmByIndex(index);
    m_plot.removeDev(5);
    m_plot.addDev(5, 0);
    m_registry.newNox(-1, true)->qwtIndex = 5;
}

QString TestResultsReading::fileWith(int rows)
{
    QFile file(m_directory.filePath(QString("%1 строк.csv").arg(rows)));
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return file.fileName(); // made before
    file.write(toWindows1251("Дата 24.11.2026 Время 07:05:09;\r\n\r\n№;dT;Канал 1;Канал 2;\r\n"
                             " ;[c];[°С];[Ом];\r\n"));
    for (int row = 0; row < rows; ++row)
        file.write(QByteArray::number(row + 1) + ';' + QByteArray::number(row) + ";20.125;--;\r\n");
    return file.fileName();
}

void TestResultsReading::shortFile()
{
    m_plot.addPoint(1, 1, "K", 5, 3);
    QSignalSpy ends(&m_reading, &ResultsReading::finished);
    QVERIFY(read(fileWith(3), 0));
    QCOMPARE(ends.size(), 1); // a short file needs no event loop
    QCOMPARE(m_plot.getStartDateTime(5), start);
    QCOMPARE(m_plot.getChMeasCount(5, 0), 3);
    QCOMPARE(m_plot.getChMeas(5, 0), 20.125);
    QCOMPARE(m_plot.getChTime(5, 0), 2.0);
    QCOMPARE(m_plot.getChDim(5, 0), QString("°С"));
    QCOMPARE(m_plot.getChMeasCount(5, 3), 0); // what was there before
}

void TestResultsReading::refused()
{
    QSignalSpy ends(&m_reading, &ResultsReading::finished);
    m_plot.addPoint(1, 1, "K", 5, 0);
    QVERIFY(!read(m_directory.filePath("none.csv"), 0));
    QVERIFY(!read(m_directory.path(), 0));
    QVERIFY(!read(fileWith(3), 1));
    QCOMPARE(ends.size(), 0);
    QCOMPARE(m_plot.getChMeasCount(5, 0), 1);
}

void TestResultsReading::interrupted_data()
{
    QTest::addColumn<int>("what");
    QTest::newRow("the user stops it") << 0;
    QTest::newRow("the instrument is removed, and another gets its place") << 1;
    QTest::newRow("its measurements are shown again") << 2;
    QTest::newRow("its plot is cleared") << 3;
    QTest::newRow("who hears of a point removes it") << 4;
}

void TestResultsReading::interrupted()
{
    QFETCH(int, what);
    m_registry.setProccesed(0, true, false);
    m_registry.setProccesed(0, false, true);
    const auto replace = [this] {
        m_registry.rmByIndex(0);
        m_plot.removeDev(5);
        m_plot.addDev(5, 0);
        m_registry.newNox(-1, true)->qwtIndex = 5;
    };
    const auto listener = connect(&m_plot, &QwtNOX::onAddPoint, this, [&] {
        if (what == 4 && m_plot.getChMeasCount(5, 0) >= 50)
            replace();
    });
    QSignalSpy ends(&m_reading, &ResultsReading::finished);
    QVERIFY(read(fileWith(1000000), 0));
    QCOMPARE(m_reading.isRunning(), what != 4);
    if (what == 0)
        m_reading.stop();
    else if (what == 1)
        replace();
    else if (what == 2)
        m_registry.setProccesed(0, true, true);
    else if (what == 3)
        m_plot.prepareMeas(5, start.addSecs(1));
    const int count = m_plot.getChMeasCount(5, 0);
    QTRY_COMPARE(ends.size(), 1);
    QVERIFY(!ends.at(0).at(0).value<ResultsFindings>().isWhole);
    QCOMPARE(m_plot.getChMeasCount(5, 0), count);
    QVERIFY(!m_reading.isRunning());
    disconnect(listener);
}

void TestResultsReading::another()
{
    QVERIFY(read(fileWith(1000000), 0));
    QSignalSpy steps(&m_reading, &ResultsReading::progress);
    QVERIFY(read(fileWith(400001), 0));
    QSignalSpy ends(&m_reading, &ResultsReading::finished);
    QTRY_COMPARE_WITH_TIMEOUT(ends.size(), 1, 60000);
    const auto findings = ends.at(0).at(0).value<ResultsFindings>();
    QVERIFY(findings.isWhole);
    QCOMPARE(findings.points, 400001);
    QCOMPARE(m_plot.getChMeasCount(5, 0), 400001);
    QVERIFY(!steps.isEmpty());
}

void TestResultsReading::picture()
{
    m_plot.resize(321, 123);
    m_plot.setDevMain(5);
    for (const int second : {0, 1, 2})
        m_plot.addPoint(second % 2, second, "K", 5, 0);
    m_plot.setChColor(Qt::magenta, 5, 0);
    const QString fileName = m_directory.filePath("график.png");
    QVERIFY(savePlotImage(&m_plot, fileName));
    const QImage image(fileName, "PNG");
    QCOMPARE(image.size(), QSize(321, 123));
    int ink = 0; // of the curve, which no frame has painted yet
    for (int x = 0; x < image.width(); ++x)
        for (int y = 0; y < image.height(); ++y)
            ink += image.pixelColor(x, y) == Qt::magenta ? 1 : 0;
    QVERIFY(ink > 20);
    QVERIFY(!savePlotImage(&m_plot, m_directory.path()));
}

QTEST_MAIN(TestResultsReading)
#include "tst_resultsreading.moc"
