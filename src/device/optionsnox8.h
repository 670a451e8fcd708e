#pragma once

#include <QDateTime>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVector>

/**
 * The configuration image of one instrument: what the program knows of its identity, its settings
 * and its channels.
 *
 * Setters compare before they store: an unchanged value changes nothing and fires nothing, and a
 * channel beyond getDevChCount() is ignored. Signals ending in Change say that the image changed;
 * those ending in Apply ask for a block to be written to the instrument.
 */
class optionsNOX8 : public QObject
{
    Q_OBJECT
public:
    /** Channel switch: the whole first byte of the channel's record; 0 is off. */
    using _chOnOff = qint8;

    /** What a channel shows. */
    enum _chMeasType : quint8 {
        measResistance = 0x00,
        measTemperature = 0x10,
        measTemperatureCustom = 0x11, ///< in a user's unit; to the instrument it is 0x10
        measVoltage = 0x20,
    };

    /** Index of the setting "Закоротка". */
    using _devZakorotka = quint8;

    /** A block to write to the instrument; the value is its write address. */
    enum tx_code : quint8 {
        txConfiguration = 0,
        txReferenceData = 1,
        txDateTime = 6,
        txZeroShifts = 8,
        txIdentification = 50,
        txSerialNumber = 52,
    };

    /** Settings of one channel. */
    struct _ch {
        _chOnOff onOff = 1;
        _chMeasType measType = measResistance;
        QString dimCust; ///< the user's unit, at most 10 characters
    };

    /** One measurement that the instrument has stored. */
    struct _recItem {
        float time = 0; ///< seconds from the start of the recording
        float value = 0;
        QString dim; ///< unit text
    };

    explicit optionsNOX8(QObject *parent = nullptr);

    static constexpr int channelRecords = 16;

    quint16 devNumber = 0;          ///< serial number; 0 is unknown
    quint32 devType = 0;            ///< type code; 0 is unknown
    QString devName;                ///< the instrument's own name (extended models)
    bool identValid = false;        ///< an identification has been read or loaded
    bool identApplyPending = false; ///< the identity was changed and is not written yet
    quint8 devCompensTP = 0;        ///< cold-junction compensation: 0 no, 1 yes, 2 all
    _devZakorotka devZakorotka = 1;

    /** Type code to model name; extended models only when `withRev`. */
    QMap<quint32, QString> getTypeList(bool withRev) const;
    /** Channels of the model: 8, 16, or 0 for an unknown one. */
    quint8 getDevChCount() const;
    /** 0xAA0F for the extended models, else 0. */
    quint16 getDevRev() const;
    /** Byte that blocks and transfers carry for the model's family. */
    char getDevFamily() const;
    /** Name of the model; "-" for an unknown code; without revision the base model's, or "". */
    QString getDevTypeStr(bool withRev) const;
    /** Serial number of at least four digits, "--" for 0. */
    QString getDevNumberStr() const;
    /** The instrument's own name, else the model's (with " № " and the number if asked for). */
    QString getDevName(bool withNumber) const;
    /** A copy of the channel's settings; a default record beyond the channel count. */
    _ch getCh(quint8 ch) const;
    /** Unit text of what the channel measures; "-" beyond the channel count. */
    QString getChMeasTypeName(quint8 ch) const;
    /** Unit text of a measurement type; the user's unit is the channel's own. */
    QString getChMeasTypeName(_chMeasType type) const;
    /** The user's unit of the channel; "-" beyond the channel count. */
    QString getChDimCust(quint8 ch) const;
    /** Unit text of a letter of the measurement stream; "-" for an unknown one. */
    QString getDim(char letter) const;

    /** False for a type that is not in the table, which changes nothing, and for 0. */
    bool setDevType(quint32 type);
    void setDevNumber(quint16 number);
    void setChOnOff(quint8 ch, _chOnOff onOff);
    void setChMeasType(quint8 ch, _chMeasType type, QString dim);
    void setChDimCust(quint8 ch, QString dim);

signals:
    void onDevChange();
    void onRefChange();
    void onRefShiftChange();
    /** `ch` from 0. */
    void onChChange(quint8 ch);
    void onIdentChange();
    void onIdentApply();
    void onSNApply();
    void onDevApply();
    void onChApply(quint8 ch);
    void onRefApply();
    void onRefShiftApply();
    /** A channel's data do not fit the image: the configuration should be read again. */
    void onChErrorData();
    /** The logger has been read: records by channel (from 0), and the start of the recording. */
    void onRecData(QMap<quint8, QVector<optionsNOX8::_recItem>> records, QDateTime start);

private:
    QVector<_ch> m_channels;
};
