/// Feeds settings files.
///
/// Input: the file.

#include "device/settingsfile.h"
#include "device/windows1251.h"
#include "imagechecks.h"

#include <QBuffer>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <random>

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maxSize);

namespace
{

constexpr size_t longestLine = 128;
constexpr size_t bytesOfAnEnd =
    600; ///< the many lines of the characteristics lie between both ends
constexpr uint sampleInterval = 16;

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

/** Whether lines are equal, but for the sign of a number that was rounded to zero. */
bool saysTheSame(QStringList one, QStringList other)
{
    static const QRegularExpression negativeZero("^-(0(\\.0*)?)$");
    return one == other ||
           one.replaceInStrings(negativeZero, "\\1") == other.replaceInStrings(negativeZero, "\\1");
}

/** What was taken whole can be saved and taken again, and then says the same. */
void requireSaved(const optionsNOX8 &image)
{
    require(image.devType != 0);
    if (!fitsSettingsFile(image))
        return;
    const QStringList lines = settingsLines(image);
    static optionsNOX8 again;
    renew(again);
    require(load(toWindows1251(lines.join("\r\n") + "\r\n"), again));
    require(again.devType == image.devType && again.getDevName(false) == image.getDevName(false));
    const auto &features = image.features;
    const bool isExactlyKept =
        std::all_of(features.begin(), features.end(),
                    [](const featureNOX8 *feature) { return isExact(*feature); });
    require(!isExactlyKept || saysTheSame(settingsLines(again), lines));
}

/** Where the line to change lies in a file: near its beginning, near its end, or anywhere. */
size_t chooseOffset(std::minstd_rand &random, size_t size)
{
    const size_t offset = random() % size;
    switch (random() % 3) {
    case 0:
        return offset % bytesOfAnEnd;
    case 1:
        return size - 1 - offset % bytesOfAnEnd;
    default:
        return offset;
    }
}

} // namespace

/** Changes one line most of the time: a file whose lines have all moved says little. */
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize,
                                          unsigned int seed)
{
    std::minstd_rand random(seed);
    if (size == 0 || random() % 4 == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    uint8_t *const end = data + size;
    uint8_t *const place = data + qMin(chooseOffset(random, size), size - 1);
    uint8_t *const lineEnd = std::find(place, end, '\n');
    uint8_t *const line =
        std::find(std::reverse_iterator(place), std::reverse_iterator(data), '\n').base();

    std::array<uint8_t, longestLine> changed;
    const auto lineSize = size_t(lineEnd - line);
    const size_t kept = qMin(lineSize, longestLine);
    std::copy_n(line, kept, changed.begin());
    const size_t most = qMin(longestLine, maxSize - (size - lineSize));
    if (most == 0) // an empty line of a file that cannot grow: every mutation has a byte at least
        return LLVMFuzzerMutate(data, size, maxSize);
    const size_t changedSize = LLVMFuzzerMutate(changed.data(), qMin(kept, most), most);
    std::replace(changed.begin(), changed.begin() + changedSize, uint8_t('\n'), uint8_t(' '));
    std::memmove(line + changedSize, lineEnd, size_t(end - lineEnd));
    std::copy_n(changed.begin(), changedSize, line);
    return size - lineSize + changedSize;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static optionsNOX8 image;
    renew(image);
    FuzzInput input(data, size);
    const bool isAccepted = load(input.rest(), image);
    requireFitting(image);
    requireIndicesInside(image);
    requireAnswersOn(image, quint8(size));
    if (!input.isSample(sampleInterval))
        return 0;
    requireAnswers(image);
    requireBlocks(image);
    if (isAccepted)
        requireSaved(image);
    return 0;
}
