#include "device/boundedreading.h"
#include "device/optionsnox8.h"
#include "device/settingsfile.h"
#include "device/settingsformat.h"
#include "device/vocabulary.h"
#include "device/windows1251.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>

#include <cstring>

namespace
{

constexpr int longestFile = 1 << 20; // thirty times what the largest model needs

QStringList linesOf(QIODevice &device)
{
    const QByteArray bytes = readWhole(device, longestFile);
    if (bytes.isEmpty())
        return {};
    QStringList lines = fromWindows1251(bytes).remove('\r').split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

/** The name in the line that names the model; empty when there is none. */
QString modelNameIn(const QStringList &lines)
{
    for (const int channels : {8, 16}) {
        const QString line = lines.value(SettingsLayout(channels).modelLine());
        if (line.contains(baseRevisionText))
            return line.chopped(int(std::strlen(baseRevisionText))).trimmed();
    }
    return {};
}

/** A receiver of a change has taken the image away. */
struct ImageGone {
};

/** Reads the lines of one known model, section by section, until the image has gone. */
class SettingsReader
{
public:
    SettingsReader(const QStringList &lines, const InstrumentModel &model, optionsNOX8 &image)
        : m_lines(lines)
        , m_model(model)
        , m_layout(model.channels, model.hasShortCircuit)
        , m_image(&image)
    {
    }

    bool read()
    {
        readReferences();
        readOperatingSettings();
        for (quint8 ch = 0; ch < m_model.channels; ++ch)
            readChannel(ch);
        for (quint8 ch = 0; ch < m_model.channels && m_accepted; ++ch)
            readCharacteristic(ch);
        readMeasurementTime();
        readCorrections();
        readReversal();
        if (m_model.hasShortCircuit)
            readCompensation();
        image().setReferenceData(image()); // all of it is there by now
        readUnits();
        if (m_lines.value(m_layout.extendedPart()) == extendedRevisionText)
            readExtendedPart();
        return m_accepted && m_complete;
    }

private:
    optionsNOX8 &image() const { return m_image ? *m_image : throw ImageGone(); }

    /** Whether the line is there; the result of the reading is false if it is not. */
    bool has(int line)
    {
        m_complete = m_complete && line < m_lines.size();
        return line < m_lines.size();
    }

    /** Remembers that something was not taken. */
    void refuse() { m_complete = false; }

    /** Takes a whole number of which `lowest` stands for 0 and which then fits four bits. */
    template<typename Store>
    void takeNibble(const QString &text, int lowest, Store store)
    {
        bool isNumber = false;
        const int number = text.toInt(&isNumber);
        if (isNumber && number >= lowest && fitsNibble(number - lowest))
            store(quint8(number - lowest));
        else
            refuse();
    }

    /** Takes a number, unless one before it was not accepted. */
    void readNumber(int line, bFloat &number)
    {
        if (m_accepted && has(line))
            m_accepted = number.setFloat(m_lines.at(line));
    }

    void readReference(int line, bFloat &number)
    {
        if (m_lines.at(line) != QStringLiteral("-"))
            readNumber(line, number);
    }

    void readReferences()
    {
        int line = SettingsLayout::resistorLine;
        for (ReferenceTriple &resistor : image().refR)
            readReference(line++, resistor.value);
        readReference(SettingsLayout::voltageLine, image().refU.value);
    }

    void readOperatingSettings()
    {
        takeNibble(m_lines.at(SettingsLayout::modeLine), 0, [this](quint8 code) {
            image().setOperatingSetting(&OperatingSettings::devMeasMode, code);
        });
        takeNibble(m_lines.at(SettingsLayout::roundingLine), 0, [this](quint8 code) {
            image().setOperatingSetting(&OperatingSettings::devMeasRound, quint8(code << 4));
        });
        takeNibble(m_lines.at(SettingsLayout::compensationModeLine), 0, [this](quint8 code) {
            image().setOperatingSetting(&OperatingSettings::devCompensTP, code);
        });
    }

    void readChannel(quint8 ch)
    {
        const QStringList lines =
            m_lines.mid(m_layout.channelLine(ch), SettingsLayout::linesOfChannel);
        image().setChOnOff(ch, isSwitchedOn(lines.at(0)) ? 1 : 0);
        if (const auto type = unitFromText(lines.at(1)))
            image().setChMeasType(ch, *type, {});
        takeNibble(lines.at(2).split(' ').at(0), 1,
                   [this, ch](quint8 index) { image().setChCurrent(ch, index); });
        takeNibble(lines.at(3).split(' ').value(1), 1,
                   [this, ch](quint8 index) { image().setChResist(ch, index); });
        const int code = lines.at(4).toInt();
        if (const auto choice = characteristicFromCode(code)) {
            image().setChFeature(ch, choice->source, choice->index);
        } else {
            if (code <= lastCharacteristicCode)
                refuse();
            if (!image().hasChFeature(ch))
                image().setChFeature(ch, featureIndividual, 0);
        }
    }

    void readCharacteristic(quint8 ch)
    {
        if (!has(m_layout.formLine(ch)))
            return;
        const int type = typeFromFormCode(m_lines.at(m_layout.formLine(ch)).toInt());
        m_accepted = image().setIndividualFeature(ch, FeatureRecord::_featureIndType(type),
                                                  m_lines.at(m_layout.nameLine(ch)),
                                                  characteristicTexts(type, ch));
    }

    QStringList characteristicTexts(int type, quint8 ch) const
    {
        const QStringList entries = m_lines.mid(m_layout.entryLine(ch), SettingsLayout::entryLines);
        switch (type) {
        case FeatureRecord::polynomial:
            return entries.mid(0, 10);
        case FeatureRecord::callendarVanDusen:
            return m_lines.mid(m_layout.coefficientLine(ch), 6);
        case FeatureRecord::its90:
            return entries.mid(0, 9);
        case FeatureRecord::temperatureOfVoltage:
            break;
        default:
            return {};
        }
        QStringList texts;
        for (const QString &entry : entries)
            texts << textsFromTableLine(entry);
        return texts;
    }

    void readMeasurementTime()
    {
        if (!has(m_layout.timeLine()))
            return;
        if (const auto time = timeFromText(m_lines.at(m_layout.timeLine())))
            image().setOperatingSetting(&OperatingSettings::devMeasTime, *time);
        else
            refuse();
    }

    void readCorrections()
    {
        readNumber(m_layout.temperatureLine(), image().refT0);
        int line = m_layout.correctionLine();
        const auto readCorrection = [&](ReferenceTriple &triple) {
            readNumber(line++, triple.a);
            readNumber(line++, triple.b);
        };
        for (ReferenceTriple &resistor : image().refR)
            readCorrection(resistor);
        readCorrection(image().refU);
    }

    void readReversal()
    {
        const int line = m_layout.reversalLine();
        if (has(line))
            image().setOperatingSetting(&OperatingSettings::devChRevers,
                                        m_lines.at(line) == QStringLiteral("1") ? 0x10 : 0x00);
    }

    void readCompensation()
    {
        for (quint8 ch = 0; ch < m_model.channels; ++ch)
            if (has(m_layout.compensationLine(ch)))
                readCompensation(ch, m_lines.at(m_layout.compensationLine(ch)));
        const int line = m_layout.shortCircuitLine();
        if (has(line))
            image().setDevZakorotka(m_lines.at(line) == QStringLiteral("1") ? 0 : 1);
    }

    void readCompensation(quint8 ch, const QString &text)
    {
        const int code = text.toInt();
        const auto choice = compensationFromCode(code);
        if (!choice && !text.isEmpty() && code <= lastCompensationCode)
            refuse();
        if (choice)
            image().setChFeatureCompesTP(ch, choice->source, choice->index);
        else if (!image().hasChFeatureCompesTP(ch) || (text.isEmpty() && !hasUnkeptKind(ch)))
            image().setChFeatureCompesTP(ch, compensNone, 0);
    }

    /** An empty line stands for a thermocouple or for none: a channel that has one of the two keeps
     *  it, any other gets none. */
    bool hasUnkeptKind(quint8 ch) const
    {
        const CompensationSource source = image().channels.at(ch).featureTypeCompensTP;
        return source == compensNone || source == compensThermocouple;
    }

    void readUnits()
    {
        // files from before there were units end here
        if (m_lines.size() <= m_layout.unitLine(0) || !has(m_layout.extendedPart() - 1))
            return;
        for (quint8 ch = 0; ch < m_model.channels; ++ch) {
            const QString unit = m_lines.at(m_layout.unitLine(ch));
            if (!unit.isEmpty())
                image().setChUnit(ch, unit);
        }
    }

    void readExtendedPart()
    {
        const int typeLine = m_layout.extendedPart() + 1;
        const quint32 type = m_lines.value(typeLine).toUInt();
        if (type == 0 || !image().setDevType(type))
            return refuse();
        if (has(typeLine + 1))
            image().devName = m_lines.at(typeLine + 1).trimmed();
        int line = typeLine + 2;
        forEachShift(static_cast<ZeroShifts &>(image()), [this, &line](bFloat &shift) {
            if (has(line))
                shift.setFloat(m_lines.at(line));
            ++line;
        });
    }

    const QStringList &m_lines;
    const InstrumentModel &m_model;
    SettingsLayout m_layout;
    QPointer<optionsNOX8> m_image;
    bool m_accepted = true; ///< every number and every characteristic so far
    bool m_complete = true; ///< every line was there and said something
};

} // namespace

bool applySettings(const QStringList &lines, optionsNOX8 &image)
{
    const QString name = modelNameIn(lines);
    const InstrumentModel *const named = name.isEmpty() ? nullptr : findModelNamed(name);
    const QPointer<optionsNOX8> announced(&image);
    image.setDevType(named ? named->typeCode : 0);
    const InstrumentModel &model = modelOrNone(announced ? image.devType : 0);
    try {
        return model.channels != 0 && SettingsReader(lines, model, image).read();
    } catch (const ImageGone &) {
        return false;
    }
}

bool loadSettingsFile(const QString &fileName, optionsNOX8 &image)
{
    QFile file(fileName);
    // opening anything but a file could wait for ever
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    return readSettings(file, image);
}

bool readSettings(QIODevice &device, optionsNOX8 &image)
{
    return applySettings(linesOf(device), image);
}
