#include "device/filereplacement.h"
#include "device/optionsnox8.h"
#include "device/settingsfile.h"
#include "device/settingsformat.h"
#include "device/vocabulary.h"
#include "device/windows1251.h"

namespace
{

QString fixedPoint(const bFloat &number, int decimals)
{
    return QString::number(double(number.value), 'f', decimals);
}

QString significant(const bFloat &number)
{
    return QString::number(double(number.value), 'g', 6);
}

QString flag(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

/** A text that cannot break the numbering of the lines. */
QString oneLine(QString text)
{
    return text.replace('\n', ' ').replace('\r', ' ');
}

/** Collects the lines, one section after the other. */
class SettingsWriter
{
public:
    explicit SettingsWriter(const optionsNOX8 &image)
        : m_image(image)
        , m_model(modelOrNone(image.devType))
    {
    }

    QStringList write()
    {
        m_lines << QStringLiteral("COM1");
        writeReferences();
        writeOperatingSettings();
        for (quint8 ch = 0; ch < m_model.channels; ++ch)
            writeChannel(ch);
        writeCharacteristics();
        writeEmpty(SettingsLayout::reservedLines);
        m_lines << m_image.getDevTypeStr(false) + ' ' + baseRevisionText;
        m_lines << timeCharacter(m_image.devMeasTime);
        writeCorrections();
        m_lines << flag(m_image.devChRevers == 0x10);
        if (m_model.hasShortCircuit)
            writeCompensation();
        writeUnits();
        if (m_model.extended)
            writeExtendedPart();
        return m_lines;
    }

private:
    void writeEmpty(int count)
    {
        for (int i = 0; i < count; ++i)
            m_lines << QString();
    }

    void writeReferences()
    {
        for (const ReferenceTriple &resistor : m_image.refR)
            m_lines << fixedPoint(resistor.value, 5);
        m_lines << fixedPoint(m_image.refU.value, 5);
    }

    void writeOperatingSettings()
    {
        m_lines << QString::number(m_image.devMeasMode)
                << QString::number(m_image.devMeasRound / 16)
                << QString::number(m_image.devCompensTP);
    }

    void writeChannel(quint8 ch)
    {
        const ChannelSettings &channel = m_image.channels.at(ch);
        m_lines
            << switchText(channel.onOff) << unitText(channel.measType)
            << QStringLiteral("%1 [%2]").arg(channel.current + 1).arg(m_image.getChCurrentStr(ch))
            << QStringLiteral("Rr %1").arg(channel.resist + 1)
            << QString::number(characteristicCode(channel));
    }

    void writeCharacteristics()
    {
        const QVector<featureNOX8 *> features = m_image.features.mid(0, m_model.channels);
        for (const featureNOX8 *feature : features)
            m_lines << oneLine(feature->name);
        for (const featureNOX8 *feature : features)
            writeEntries(*feature);
        for (const featureNOX8 *feature : features)
            writeCoefficients(*feature);
        for (const featureNOX8 *feature : features)
            m_lines << QString::number(formCode(feature->type));
    }

    void writeEntries(const FeatureRecord &feature)
    {
        const bool isTable = feature.type == FeatureRecord::temperatureOfVoltage;
        const bFloat *pair = feature.ratio.data();
        for (int k = 0; k < SettingsLayout::entryLines; ++k, pair += 2)
            m_lines << (isTable ? tableLine(pair[0], pair[1]) : oneLine(feature.ratioStr.value(k)));
    }

    void writeCoefficients(const FeatureRecord &feature)
    {
        QStringList coefficients;
        if (feature.type != FeatureRecord::temperatureOfVoltage)
            coefficients = feature.ratioStr;
        if (feature.type == FeatureRecord::its90 && coefficients.size() >= 4)
            coefficients.insert(4, QString());
        for (int k = 0; k < SettingsLayout::coefficientLines; ++k)
            m_lines << oneLine(coefficients.value(k));
    }

    void writeCorrections()
    {
        m_lines << fixedPoint(m_image.refT0, 2);
        for (const ReferenceTriple &resistor : m_image.refR)
            m_lines << significant(resistor.a) << significant(resistor.b);
        m_lines << significant(m_image.refU.a) << significant(m_image.refU.b);
    }

    void writeCompensation()
    {
        for (quint8 ch = 0; ch < m_model.channels; ++ch)
            m_lines << compensationCode(m_image.channels.at(ch));
        m_lines << flag(m_image.devZakorotka == 0);
    }

    void writeUnits()
    {
        for (quint8 ch = 0; ch < m_model.channels; ++ch) {
            const ChannelSettings &channel = m_image.channels.at(ch);
            m_lines << (channel.measType == measTemperatureCustom ? oneLine(channel.dimCust)
                                                                  : QString());
        }
    }

    void writeExtendedPart()
    {
        m_lines << extendedRevisionText << QString::number(m_image.devType)
                << oneLine(m_image.devName);
        forEachShift(static_cast<const ZeroShifts &>(m_image),
                     [this](const bFloat &shift) { m_lines << significant(shift); });
    }

    const optionsNOX8 &m_image;
    const InstrumentModel &m_model;
    QStringList m_lines;
};

bool fitsLines(const FeatureRecord &feature)
{
    if (feature.type != FeatureRecord::temperatureOfVoltage)
        return true;
    for (std::size_t i = 0; i < feature.ratio.size(); i += 2)
        if (!fitsTableLine(feature.ratio[i], feature.ratio[i + 1]))
            return false;
    return true;
}

} // namespace

bool fitsSettingsFile(const optionsNOX8 &image)
{
    if (image.getDevChCount() == 0)
        return false;
    for (int ch = 0; ch < image.getDevChCount(); ++ch)
        if (!fitsLines(*image.features.at(ch)))
            return false;
    return true;
}

QStringList settingsLines(const optionsNOX8 &image)
{
    return SettingsWriter(image).write();
}

bool saveSettingsFile(const optionsNOX8 &image, const QString &fileName)
{
    if (!fitsSettingsFile(image))
        return false;
    const QString lineEnd = QStringLiteral("\r\n");
    return replaceFile(fileName, toWindows1251(settingsLines(image).join(lineEnd) + lineEnd));
}
