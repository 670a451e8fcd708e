/// Feeds settings files.
///
/// Input: the file.

#include "checks.h"
#include "device/settingsfile.h"
#include "device/windows1251.h"

#include <QBuffer>

#include <algorithm>
#include <random>

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maxSize);

namespace
{

constexpr int longestLine = 128;
constexpr int linesOfAnEnd = 80; ///< the many lines of the characteristics lie between both ends

bool load(QByteArray file, optionsNOX8 &image)
{
    QBuffer buffer(&file);
    require(buffer.open(QIODevice::ReadOnly));
    return readSettings(buffer, image);
}

/** No index points outside the list that it selects from. */
void requireIndicesInside(const optionsNOX8 &image)
{
    const int standard = standardThermocouples().size();
    for (const ChannelSettings &channel : image.channels) {
        require(channel.featureType == featureIndividual || channel.featureType == featureNone ||
                channel.feature < standard);
        require(channel.featureTypeCompensTP == compensIndividual ||
                channel.featureTypeCompensTP == compensNone || channel.featureCompensTP < standard);
    }
    require(image.devMeasTime <= 8);
}

/** Whether a file keeps the table, if it is one, exactly: it is read in single precision, which has
 *  no ten-thousandths of so many millivolts. */
bool isExact(const FeatureRecord &feature)
{
    constexpr float tooLarge = 1000.0F;
    if (feature.type != FeatureRecord::temperatureOfVoltage)
        return true;
    for (std::size_t i = 1; i < feature.ratio.size(); i += 2)
        if (qAbs(feature.ratio[i].value) >= tooLarge)
            return false;
    return true;
}

/** What was taken whole can be saved and taken again, and then says the same. */
void requireSaved(const optionsNOX8 &image)
{
    require(image.devType != 0);
    if (!fitsSettingsFile(image))
        return;
    const QStringList lines = settingsLines(image);
    optionsNOX8 again;
    require(load(toWindows1251(lines.join("\r\n") + "\r\n"), again));
    require(again.devType == image.devType && again.devName == image.devName);
    const auto &features = image.features;
    const bool isExactlyKept =
        std::all_of(features.begin(), features.end(),
                    [](const featureNOX8 *feature) { return isExact(*feature); });
    require(!isExactlyKept || settingsLines(again) == lines);
}

/** The number of a line to change: near the beginning, near the end, or any. */
int chooseLine(std::minstd_rand &random, int lineCount)
{
    const int line = int(random() % quint32(lineCount));
    switch (random() % 3) {
    case 0:
        return line % linesOfAnEnd;
    case 1:
        return lineCount - 1 - line % linesOfAnEnd;
    default:
        return line;
    }
}

} // namespace

/** Changes one line most of the time: a file whose lines have all moved says little. */
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize,
                                          unsigned int seed)
{
    std::minstd_rand random(seed);
    if (random() % 4 == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    QList<QByteArray> lines =
        QByteArray(reinterpret_cast<const char *>(data), int(size)).split('\n');
    QByteArray &line = lines[chooseLine(random, lines.size())];
    const int lineSize = qMin(line.size(), longestLine);
    line.resize(longestLine);
    line.truncate(int(
        LLVMFuzzerMutate(reinterpret_cast<uint8_t *>(line.data()), size_t(lineSize), longestLine)));
    line.replace('\n', ' ');
    const QByteArray file = lines.join('\n').left(int(maxSize));
    std::copy(file.begin(), file.end(), data);
    return size_t(file.size());
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray file(reinterpret_cast<const char *>(data), int(size));
    optionsNOX8 image;
    const bool isAccepted = load(file, image);
    requireFitting(image);
    requireStable(image);
    requireIndicesInside(image);
    requireAnswers(image);
    if (isAccepted)
        requireSaved(image);
    return 0;
}
