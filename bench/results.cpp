/// Prints what results files cost: export, reading and recording, as multiples of what Qt's own
/// classes need for the same numbers.

#include "plot/qwtnox.h"
#include "processortime.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/recorder.h"
#include "storage/resultsexport.h"
#include "storage/resultsreading.h"

#include <QApplication>
#include <QBuffer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <cmath>
#include <cstdio>
#include <functional>

namespace
{

constexpr int rows = 1000000;
constexpr int channels = 16;
constexpr int decimals = 4;
constexpr int recordedRows = 5000;
constexpr int plotIndex = 0;

double valueOf(int row, int channel)
{
    const unsigned noise = (unsigned(row) * channels + unsigned(channel)) * 2654435761U;
    return 20 + channel + (noise >> 8) * 0x1p-25;
}

/** An instrument whose 16 channels have a million points each, a second apart. */
PlotDevice longInstrument()
{
    PlotDevice instrument;
    instrument.ch.resize(channels);
    for (int channel = 0; channel < channels; ++channel) {
        for (int row = 0; row < rows; ++row)
            instrument.ch[channel].appendPoint(valueOf(row, channel), row, "K");
        instrument.ch[channel].error = false;
    }
    return instrument;
}

/** Takes whatever is written, and keeps nothing. */
class Nowhere : public QIODevice
{
public:
    Nowhere() { open(QIODevice::WriteOnly); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override { return size; }
};

/** Takes points, and keeps nothing but their sum, so that nothing can be left out. */
class Sum : public ResultsSink
{
public:
    void begin(const QDateTime &) override {}
    bool take(const QVector<PlotPoint> &points, const QVector<QString> &) override
    {
        for (const PlotPoint &point : points)
            sum += point.value;
        return true;
    }

    double sum = 0;
};

void writeAll(const PlotDevice &instrument, QIODevice *device)
{
    ResultsExport results(instrument, {});
    while (results.writeOn(device, 1000) == ResultsExport::Unfinished)
        continue;
}

/** Seconds in which QString::number() alone writes the numbers of all rows. */
double numberSeconds()
{
    qint64 size = 0;
    const double nanoseconds = nanosecondsOf(1, [&](int) {
        for (int row = 0; row < rows; ++row) {
            size += QString::number(double(row), 'g', 6).size();
            for (int channel = 0; channel < channels; ++channel)
                size += QString::number(valueOf(row, channel), 'f', decimals).size();
        }
    });
    return size > 0 ? nanoseconds / 1e9 : 0;
}

/** Seconds in which Qt's own classes read a file, and what the values add up to. */
double parseSeconds(const QString &fileName, double *sum)
{
    const double nanoseconds = nanosecondsOf(1, [&](int) {
        QFile file(fileName);
        file.open(QIODevice::ReadOnly | QIODevice::Text);
        QTextStream stream(&file);
        stream.setCodec("Windows-1251");
        QString line;
        for (int number = 0; stream.readLineInto(&line); ++number) {
            const QStringList fields = line.split(';');
            for (int i = 2; number >= 4 && i < fields.size(); ++i)
                *sum += fields.at(i).toDouble();
        }
    });
    return nanoseconds / 1e9;
}

/** Runs an event loop until it is told to end, and returns the longest time in milliseconds in
 * which it looked at no other event. */
double longestGap(const std::function<void(QEventLoop *)> &start)
{
    QEventLoop loop;
    QTimer heart;
    QElapsedTimer beat;
    double longest = 0;
    QObject::connect(&heart, &QTimer::timeout, [&] {
        longest = std::max(longest, double(beat.nsecsElapsed()) / 1e6);
        beat.start();
    });
    heart.start(0);
    beat.start();
    QMetaObject::invokeMethod(
        &loop, [&] { start(&loop); }, Qt::QueuedConnection);
    loop.exec();
    return longest;
}

/** The largest memory that the process has had, in MiB. */
double peakMemory()
{
    QFile status("/proc/self/status");
    status.open(QIODevice::ReadOnly);
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines)
        if (line.startsWith("VmHWM:"))
            return line.simplified().split(' ').at(1).toDouble() / 1024;
    return 0;
}

bool reportExport(const PlotDevice &instrument, const QString &fileName)
{
    const double plain = numberSeconds();
    const double nowhere = nanosecondsOf(3,
                                         [&](int) {
                                             Nowhere device;
                                             writeAll(instrument, &device);
                                         }) /
                           1e9;
    ExportJob job;
    bool isWritten = false;
    QElapsedTimer wall;
    const double gap = longestGap([&](QEventLoop *loop) {
        QObject::connect(&job, &ExportJob::finished, loop, [&, loop](bool written) {
            isWritten = written;
            loop->quit();
        });
        wall.start();
        job.start(fileName, instrument, {});
    });
    std::printf("export: QString::number alone %.2f s, all of it %.2f s: %.2f times\n", plain,
                nowhere, nowhere / plain);
    std::printf("  to a file, with the disk: %.2f s, longest gap of the event loop %.0f ms\n",
                double(wall.elapsed()) / 1e3, gap);
    return isWritten;
}

bool reportReading(const QString &fileName)
{
    QFile file(fileName);
    Sum found;
    const double memoryBefore = peakMemory();
    const double seconds =
        nanosecondsOf(1,
                      [&](int) {
                          file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
                          ResultsReader reader(&file, &found, QDateTime::currentDateTime());
                          while (reader.readOn(1000))
                              continue;
                      }) /
        1e9;
    const double memory = peakMemory() - memoryBefore;
    double sum = 0;
    const double plain = parseSeconds(fileName, &sum);
    std::printf("reading: Qt's classes %.2f s, our reader %.2f s: %.2f times, %.1f MiB for a file "
                "of %.0f MiB\n",
                plain, seconds, seconds / plain, memory, double(file.size()) / 1048576);
    return sum == found.sum;
}

bool reportReadingIntoPlot(const QString &fileName)
{
    noxSql database{QString()};
    NOXSerialPort port;
    noxList registry(&port, &database);
    QwtNOX plot;
    plot.resize(1000, 600);
    plot.show();
    plot.addDev(plotIndex, channels);
    plot.setDevMain(plotIndex);
    registry.newNox(-1, true)->qwtIndex = plotIndex;
    ResultsReading reading(&registry, &plot);
    double seconds = 0;
    const double gap = longestGap([&](QEventLoop *loop) {
        const double start = processorNanoseconds();
        QObject::connect(&reading, &ResultsReading::finished, loop, [&, start, loop] {
            seconds = (processorNanoseconds() - start) / 1e9;
            loop->quit();
        });
        reading.open(fileName);
        reading.start(0);
    });
    std::printf("  into the plot: %.2f s, longest gap of the event loop %.0f ms\n", seconds, gap);
    return plot.getChMeasCount(plotIndex, 0) == rows;
}

bool reportRecording(const QString &fileName)
{
    noxSql database{QString()};
    NOXSerialPort port;
    noxList registry(&port, &database);
    QwtNOX plot;
    plot.addDev(plotIndex, channels);
    plot.setDevMain(plotIndex);
    noxList::_nox *nox = registry.newNox(-1, true);
    nox->qwtIndex = plotIndex;
    nox->recording = true;
    nox->recFileName = fileName;
    Recorder recorder(&registry, &plot);
    double all = 0;
    double longest = 0;
    for (int row = 0; row <= recordedRows; ++row) {
        for (int channel = 0; channel < channels; ++channel) {
            QElapsedTimer timer;
            timer.start();
            recorder.noteMeasurement(0, quint8(channel));
            const double microseconds = double(timer.nsecsElapsed()) / 1e3;
            all += microseconds;
            longest = std::max(longest, microseconds);
            plot.addPoint(valueOf(row, channel), row, "K", plotIndex, uchar(channel));
        }
    }
    std::printf("recording: %.1f us a row of %d channels, the longest %.0f us\n",
                all / recordedRows, channels, longest);
    return nox->recRow == recordedRows;
}

} // namespace

int main(int count, char **arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    const QTemporaryDir directory(QStringLiteral("results-XXXXXX")); // on the disk, not in memory
    const QString fileName = directory.filePath("results.csv");
    std::printf("%d rows of %d channels\n", rows, channels);
    const bool isRight = reportExport(longInstrument(), fileName) && reportReading(fileName) &&
                         reportReadingIntoPlot(fileName) &&
                         reportRecording(directory.filePath("recording.csv"));
    std::puts(isRight ? "" : "the numbers are not those that were written");
    return isRight ? 0 : 1;
}
