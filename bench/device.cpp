/// Prints what the work on an instrument's memory and files costs.

#include "device/featurenox8.h"
#include "device/loggerrecords.h"
#include "device/optionsnox8.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>
#include <limits>
#include <memory>

namespace
{

constexpr double frameMicroseconds = 16000.0; ///< one picture of a window that stays fluid
constexpr int passes = 7;
constexpr qint64 passNanoseconds = 50'000'000; ///< the least that a pass takes
constexpr quint32 extendedModel = 0x0960AA0F;  ///< 16 channels
constexpr quint8 configurationAddress = 2;
constexpr int loggerSize = 32768;

/** Microseconds of one call; the best of some passes, each of as many calls as it takes. */
template<typename Work>
double microsecondsOf(Work work)
{
    double best = std::numeric_limits<double>::infinity();
    for (int pass = 0; pass < passes; ++pass) {
        int calls = 0;
        QElapsedTimer timer;
        timer.start();
        do {
            work();
            ++calls;
        } while (timer.nsecsElapsed() < passNanoseconds);
        best = qMin(best, double(timer.nsecsElapsed()) / 1e3 / calls);
    }
    return best;
}

/** A line of the table. False if the work, done once more, says that it failed. */
template<typename Work>
bool report(const char *name, Work work)
{
    const double microseconds = microsecondsOf(work);
    std::printf("%-52s %12.1f %13.1f\n", name, microseconds, frameMicroseconds / microseconds);
    std::fflush(stdout);
    return work();
}

QStringList thermometerEntries()
{
    return {"100", "3.9083e-3", "-5.775e-7", "-4.183e-12", "-200", "850"};
}

QStringList tableEntries()
{
    QStringList entries;
    for (int pair = 0; pair < 56; ++pair)
        entries << QString::number(pair * 17.5 - 50.0, 'f', 1)
                << QString::number(pair * 0.7312 - 1.8891, 'f', 4);
    return entries;
}

/** An image with a characteristic in each of its 16 channels: thermometers and tables in turn. */
void fill(optionsNOX8 &image)
{
    image.setDevType(extendedModel);
    image.setDevNumber(1234);
    image.devName = QStringLiteral("Bath reference");
    for (quint8 ch = 0; ch < image.getDevChCount(); ++ch) {
        const QString name = QStringLiteral("Probe %1").arg(ch + 1);
        if (ch % 2 == 0)
            image.getFeature(ch)->setFeature(FeatureRecord::callendarVanDusen, name,
                                             thermometerEntries());
        else
            image.getFeature(ch)->setFeature(FeatureRecord::temperatureOfVoltage, name,
                                             tableEntries());
    }
}

/** A start, then rounds of a time mark and a measurement of each of 15 channels. */
QByteArray loggerRecords()
{
    QByteArray records = QByteArray::fromHex("000c0b180a1e0f00");
    while (records.size() < loggerSize) {
        const int record = records.size() / 8;
        const QByteArray value = bFloat(float(record)).getByte();
        const int channel = record % 16;
        records += channel == 15
                       ? QByteArray("\x01\0\0\0", 4) + value
                       : '\x02' + QByteArray(1, char(channel)) + value + QByteArray("\x10\0", 2);
    }
    return records;
}

bool benchConfiguration(optionsNOX8 &image)
{
    const QByteArray block = *std::unique_ptr<QByteArray>(image.getData());
    return report("decode the configuration block of 7944 bytes",
                  [&] { return image.setData(block, configurationAddress); }) &&
           report("encode the configuration block of 7944 bytes", [&] {
               return std::unique_ptr<QByteArray>(image.getData())->size() == block.size();
           });
}

bool benchSettingsFile(optionsNOX8 &image)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("bench.ust"));
    const bool isSaved = report("save a settings file of 16 channels",
                                [&] { return image.saveToFile(path, QString()); });
    return isSaved &&
           report("load a settings file of 16 channels", [&] { return image.loadFromFile(path); });
}

bool benchLogger()
{
    const QByteArray records = loggerRecords();
    return report("decode a logger of 32768 bytes", [&records] {
        LoggerReadout readout;
        return decodeLoggerRecords(records, 16, readout);
    });
}

bool benchFit()
{
    featureNOX8 feature;
    const QStringList entries = thermometerEntries();
    return report("fit a Callendar-Van Dusen characteristic", [&] {
        return feature.setFeature(FeatureRecord::callendarVanDusen, "Pt100", entries) != 0;
    });
}

} // namespace

int main()
{
    std::printf("device; a frame is %.0f ms\n", frameMicroseconds / 1e3);
    std::printf("%-52s %12s %13s\n", "work", "microseconds", "in one frame");
    optionsNOX8 image;
    fill(image);
    const bool isDone =
        benchConfiguration(image) && benchSettingsFile(image) && benchLogger() && benchFit();
    return isDone ? 0 : 1;
}
