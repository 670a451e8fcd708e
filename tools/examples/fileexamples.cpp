#include "examples/fileexamples.h"

#include "calibration/characteristicfile.h"
#include "device/settingsfile.h"
#include "device/settingsformat.h"
#include "device/windows1251.h"
#include "examples/exampleimage.h"
#include "storage/resultsexport.h"

#include <QBuffer>

namespace
{

/** Shows parts of a file, and where lines between them are left out. */
class FileDump
{
public:
    FileDump(const QStringList &fileLines, int firstNumber)
        : m_fileLines(fileLines)
        , m_firstNumber(firstNumber)
    {
    }

    /** Shows `count` lines from the one with this number on, and says what they are. */
    void show(int number, int count, const QString &meaning)
    {
        if (number != m_next)
            m_lines << QStringLiteral("  ...");
        m_lines << QStringLiteral("     -- %1").arg(meaning);
        for (int i = number; i < number + count; ++i)
            m_lines << QStringLiteral("%1|%2").arg(i, 5).arg(visible(i));
        m_next = number + count;
    }

    QStringList lines() const { return m_lines; }

private:
    QString visible(int number) const
    {
        QString line = m_fileLines.at(number - m_firstNumber);
        if (line.size() == 1 && line.at(0) < QLatin1Char(' '))
            return QStringLiteral("(U+%1)").arg(line.at(0).unicode(), 4, 16, QLatin1Char('0'));
        return line;
    }

    QStringList m_fileLines;
    int m_firstNumber;
    int m_next = m_firstNumber;
    QStringList m_lines;
};

/** The lines of the file that the editor writes for these cells. */
QStringList characteristicLines(const CharacteristicFile &file)
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    writeCharacteristicFile(file, device);
    return fromWindows1251(device.data()).split(QStringLiteral("\r\n"));
}

/** A channel of the plot with three points. */
PlotChannel exampleChannel(double first, double step, double firstSeconds, const QString &unit)
{
    PlotChannel channel;
    for (const int i : {0, 1, 2})
        channel.appendPoint(first + i * step, firstSeconds + i * 12.6, unit);
    channel.error = false;
    return channel;
}

} // namespace

QStringList settingsFileExample()
{
    optionsNOX8 image;
    fillExampleImage(image);
    const SettingsLayout layout(8, true);
    FileDump dump(settingsLines(image), 0);
    dump.show(0, 9, "references and operating settings");
    for (const int ch : {0, 1})
        dump.show(layout.channelLine(ch), 5, QStringLiteral("channel %1").arg(ch));
    dump.show(layout.nameLine(0), 4, "names of the characteristics of channels 0 to 3");
    dump.show(layout.entryLine(2), 10, "entries of channel 2, ITS-90");
    dump.show(layout.entryLine(3), 4, "entries of channel 3, a table");
    dump.show(layout.coefficientLine(0), 7, "coefficients of channel 0, Callendar and Van Dusen");
    dump.show(layout.coefficientLine(2), 10, "coefficients of channel 2");
    dump.show(layout.formLine(0), 8, "forms");
    dump.show(layout.modelLine(), 1, "model");
    dump.show(layout.timeLine(), 1, "measurement time");
    dump.show(layout.temperatureLine(), 3, "T0, corrections of R1");
    dump.show(layout.reversalLine(), 1, "reversal");
    dump.show(layout.compensationLine(0), 4, "compensation of channels 0 to 3");
    dump.show(layout.shortCircuitLine(), 1, "short circuit");
    dump.show(layout.unitLine(0), 3, "units of channels 0 to 2");
    dump.show(layout.extendedPart(), 4, "extended part: model, own name, first zero shift");
    return dump.lines();
}

QStringList characteristicFileExample()
{
    optionsNOX8 image;
    fillExampleImage(image);
    const FeatureRecord &feature = *image.getFeature(2);
    const QStringList upper = feature.ratioStr.mid(0, 4) << QStringLiteral("-");
    FileDump dump(
        characteristicLines({feature.type, feature.name, {upper, feature.ratioStr.mid(4)}}), 1);
    dump.show(1, 2, "form code, description");
    dump.show(3, 4, "Rтт, M, b, c1");
    dump.show(7, 1, "the cell without a number");
    dump.show(8, 5, "A, B, C, D, W(660.323)");
    return dump.lines();
}

QStringList tableFileExample()
{
    optionsNOX8 image;
    fillExampleImage(image);
    const FeatureRecord &feature = *image.getFeature(3);
    CharacteristicFile file{feature.type, feature.name, QVector<QStringList>(2)};
    for (int i = 0; i < feature.ratioStr.size(); ++i)
        file.rows[i % 2] << feature.ratioStr.at(i);
    FileDump dump(characteristicLines(file), 1);
    dump.show(1, 2, "form code, description");
    dump.show(3, 3, "pairs of T and U");
    dump.show(6, 2, "empty columns, up to line 58");
    return dump.lines();
}

QStringList resultsFileExample()
{
    PlotDevice instrument;
    instrument.startDateTime = QDateTime({2026, 11, 24}, {7, 5, 9});
    instrument.ch = {exampleChannel(21.53125, 0.25, 0, QStringLiteral("°С")),
                     exampleChannel(107.9, 0.0975, 0.8, QStringLiteral("Ω")),
                     exampleChannel(0.25, 0.5, 0, QStringLiteral("mV"))};
    instrument.ch.last().error = true;
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    ResultsExport(instrument, {}).writeOn(&device, 0);
    FileDump dump(fromWindows1251(device.data()).split(QStringLiteral("\r\n")), 1);
    dump.show(1, 2, "start, empty line");
    dump.show(3, 2, "columns, units");
    dump.show(5, 3, "rows");
    return dump.lines();
}
