#pragma once

#include "device/instrumentrecord.h"

#include <QObject>

/**
 * The configuration image of one instrument: its record, which it changes and announces.
 *
 * Setters compare before they store: an unchanged value changes nothing and, unless a setter says
 * so, fires nothing, and a channel beyond getDevChCount() is ignored, as is an index that four bits
 * cannot hold or that lies outside the standard list it selects from. Signals ending in Change say
 * that the image changed; those ending in Apply ask for a block to be written to the instrument.
 */
class optionsNOX8 : public QObject, public InstrumentRecord
{
    Q_OBJECT
public:
    /** A block to write to the instrument; the value is its write address. */
    enum tx_code : quint8 {
        txConfiguration = 0,
        txReferenceData = 1,
        txDateTime = 6,
        txZeroShifts = 8,
        txIdentification = 50,
        txSerialNumber = 52,
    };

    explicit optionsNOX8(QObject *parent = nullptr);

    // Settings files

    /** Writes a settings file. False, and an existing file unharmed, when it cannot be written or
     *  could not keep the image: a table of it, or an unknown model. The name of the port is not
     * kept. */
    bool saveToFile(const QString &fileName, const QString &portName) const;
    /** Reads a settings file into the image, which announces what changes (see applySettings()).
     * False when not all of it could be taken; what could is in the image. */
    bool loadFromFile(const QString &fileName);

    // Changes of the instrument

    /** False for a type that is not in the table, which changes nothing, and for 0. */
    bool setDevType(quint32 type);
    /** Announces identity and device even when the number is the same. */
    void setDevNumber(quint16 number);
    /** The instrument's own name; the identity is then to be written. */
    void setDevName(const QString &name);
    /** One of the settings that OperatingSettings lists; the short circuit has its own setter. */
    void setOperatingSetting(quint8 OperatingSettings::*setting, quint8 code);
    /** Models without the setting keep 0. */
    void setDevZakorotka(_devZakorotka code);
    /** Announced even when the data are the same. */
    void setReferenceData(const ReferenceData &data);
    /** Announced even when the shifts are the same. */
    void setZeroShifts(const ZeroShifts &shifts);

    // Changes of a channel

    void setChOnOff(quint8 ch, _chOnOff onOff);
    /** The unit, of which 10 characters are kept, is stored only with measTemperatureCustom, and
     * only if it is not empty. Announced also when only the texts differ. */
    void setChMeasType(quint8 ch, _chMeasType type, QString dim);
    void setChDimCust(quint8 ch, QString dim);
    /** A temperature in the user's unit, which is kept as it is. Announced in any case. */
    void setChUnit(quint8 ch, const QString &unit);
    void setChCurrent(quint8 ch, quint8 index);
    void setChResist(quint8 ch, quint8 index);
    void setChFeature(quint8 ch, _chFeatureType type, quint8 index);
    void setChFeatureCompesTP(quint8 ch, _chFeatureTypeCompensTP type, quint8 index);
    /** The channel's own characteristic as entered, announced before and, if it is taken, after;
     *  false when it is rejected (see featureNOX8::setFeature()). */
    bool setIndividualFeature(quint8 ch, FeatureRecord::_featureIndType type, const QString &name,
                              const QStringList &values);

public slots:
    /** Takes a block that was read at an address: 2, 3, 5, 9 or 51. False when it is refused; only
     *  a refused identification changes something: type and number become unknown. */
    bool setData(const QByteArray *buf, quint8 address);
    bool setData(const QByteArray &buf, quint8 address);

    // Asking for what was changed to be written; nothing while the type is unknown.

    void triggerChChange(quint8 ch);
    void triggerDevChange();
    void triggerRefChange();
    void triggerRefShiftChange();

signals:
    /** Type, settings, or any characteristic changed or was read. */
    void onDevChange();
    /** The reference data were set, read or loaded, or the model is another. */
    void onRefChange();
    /** The zero shifts were set or read. */
    void onRefShiftChange();
    /** The settings of a channel (from 0) changed. */
    void onChChange(quint8 ch);
    /** Type or serial number changed, or an identification was read, be it refused. */
    void onIdentChange();
    /** The identification is to be written. */
    void onIdentApply();
    /** The serial number of an extended model is to be written. */
    void onSNApply();
    /** The configuration is to be written. */
    void onDevApply();
    /** The settings of a channel (from 0) are to be written. */
    void onChApply(quint8 ch);
    /** The reference data are to be written. */
    void onRefApply();
    /** The zero shifts are to be written. */
    void onRefShiftApply();
    /** A channel's data do not fit the image: the configuration should be read again. */
    void onChErrorData();
    /** The logger has been read: records by channel (from 0), and the start of the recording. */
    void onRecData(QMap<quint8, QVector<optionsNOX8::_recItem>> records, QDateTime start);

private:
    template<typename... Signals>
    bool announce(Signals... changes);

    _ch *usedChannel(quint8 ch);
    template<typename Value>
    void change(quint8 ch, Value _ch::*member, Value value);
    template<typename Source>
    void choose(quint8 ch, Source _ch::*sourceMember, Source source, quint8 _ch::*indexMember,
                quint8 index);

    bool readConfiguration(const QByteArray &block);
    bool readReferenceData(const QByteArray &block);
    bool readLogger(const QByteArray &records);
    bool readZeroShifts(const QByteArray &block);
    bool readIdentification(const QByteArray &block);
    bool takeIdentification(const QByteArray &block);
    bool takeExtendedIdentification(const QByteArray &block);
};
