#pragma once

#include "device/configuration.h"
#include "device/instrumentblocks.h"
#include "device/loggerrecords.h"

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

struct InstrumentModel;

/**
 * What the program knows of one instrument: its identity, its settings, its channels, their
 * characteristics, its reference data and its zero shifts; the texts in which the user reads them,
 * and the blocks in which they are written.
 *
 * It announces nothing: optionsNOX8 does.
 */
class InstrumentRecord : public ReferenceData, public ZeroShifts, public OperatingSettings
{
public:
    using _chOnOff = qint8;
    using _chMeasType = MeasurementType;
    using _chFeatureType = CharacteristicSource;
    using _chFeatureTypeCompensTP = CompensationSource;
    using _ch = ChannelSettings;
    using _recItem = LoggerItem;

    static constexpr int channelRecords = 16;

    quint16 devNumber = 0;           ///< serial number; 0 is unknown
    quint32 devType = 0;             ///< type code; 0 is unknown
    QString devName;                 ///< the instrument's own name (extended models)
    bool identValid = false;         ///< an identification has been read or loaded
    bool identApplyPending = false;  ///< the identity was changed and is not written yet
    QVector<_ch> channels;           ///< 16, of which getDevChCount() are used
    QVector<featureNOX8 *> features; ///< 16 individual characteristics, children of the image

    // What the models of the family have

    /** Type code to model name; extended models only when `withRev`. */
    static QMap<quint32, QString> getTypeList(bool withRev);
    /** Excitation currents of a type in the order of their indices; empty for an unknown one. */
    static QStringList getDevCurrentList(quint32 type);
    /** Reference resistors of a type in the order of their indices; empty for an unknown one. */
    static QStringList getDevResistList(quint32 type);
    /** Unit text of a measurement type; the user's unit is the channel's own. */
    static QString getChMeasTypeName(_chMeasType type);
    /** Unit text of a letter of the measurement stream; "-" for an unknown one. */
    static QString getDim(char letter);

    // What this instrument is

    /** Channels of the model: 8, 16, or 0 for an unknown one. */
    quint8 getDevChCount() const;
    /** Reference resistors of the model, 0 to 4. */
    quint8 getDevResistCount() const;
    /** 0xAA0F for the extended models, else 0. */
    quint16 getDevRev() const;
    /** Bytes of the configuration block, 0 for an unknown type. The address changes nothing. */
    int getDevDataSize(quint8 address = 0) const;
    /** Byte that blocks and transfers carry for the model's family. */
    char getDevFamily() const;
    /** Type and serial number are known. */
    bool isIdentified() const { return devType != 0 && devNumber != 0; }
    /** Name of the model; "-" for an unknown code; without revision the base model's, or "". */
    QString getDevTypeStr(bool withRev) const;
    /** Serial number of at least four digits, "--" for 0. */
    QString getDevNumberStr() const;
    /** How an instrument is called in titles and menus: its model, " № " and its serial number. */
    QString getDevTitle() const;
    /** The instrument's own name, else the model's (with " № " and the number if asked for). */
    QString getDevName(bool withNumber) const;

    // What a channel (from 0) is set to

    /** A copy of the channel's settings; a default record beyond the channel count. */
    _ch getCh(quint8 ch) const;
    /** The channel's own characteristic; null beyond the channel count. */
    featureNOX8 *getFeature(quint8 ch) const;
    /** Names of the used channels' own characteristics. */
    QStringList getFeatureInfStrList() const;
    /** Unit text of what the channel measures; "-" beyond the channel count. */
    QString getChMeasTypeName(quint8 ch) const;
    /** The user's unit of the channel; "-" beyond the channel count. */
    QString getChDimCust(quint8 ch) const;
    /** Text of the excitation current; "-" for an index that the model does not have. */
    QString getChCurrentStr(quint8 ch) const;
    /** Name of the characteristic in use; empty for none, "-" if it does not exist. */
    QString getChFeatureName(quint8 ch) const;
    /** Name of the compensation's characteristic in use; "-" for none, or if it does not exist. */
    QString getChFeatureCompesTPName(quint8 ch) const;

    /** Whether the characteristic in use exists: an instrument may hold any index. None does. */
    bool hasChFeature(quint8 ch) const;
    bool hasChFeatureCompesTP(quint8 ch) const;

    // Blocks. The caller owns the arrays.

    /** The configuration, 3976 or 7944 bytes; without characteristics for an unknown type. */
    QByteArray *getData() const;
    /** The reference data, 72 bytes; the last 8 are the current moment unless `forStorage`. */
    QByteArray *getRefData(bool forStorage) const;
    /** The zero shifts, 148 bytes. */
    QByteArray *getRefShiftData() const;
    /** The reference data as kept, followed on extended models by the zero shifts. */
    QByteArray *getRefAllData() const;
    /** The identification to write, 8 bytes, or 20 for an extended model. */
    QByteArray *getIdentData() const;
    /** The serial number of an extended model, 4 bytes. */
    QByteArray *getSNData() const;
    /** The block of 12 bytes that sets one channel; empty beyond the channel count. */
    QByteArray channelBlock(quint8 ch) const;
    /** The current moment, 8 bytes. */
    QByteArray dateTimeBlock() const;
    /** The clock that stamps blocks, in place of the computer's. */
    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }

protected:
    /** An instrument of which nothing is known, without characteristics as yet. */
    InstrumentRecord();
    ~InstrumentRecord() = default;
    Q_DISABLE_COPY(InstrumentRecord)

    const InstrumentModel &model() const;
    /** What the configuration block holds: the used channels, and their characteristics. */
    Configuration configuration() const;
    /** Whether a source has a characteristic of this index; none has any that four bits can hold.
     */
    bool isChoice(CharacteristicSource source, quint8 index) const;
    bool isChoice(CompensationSource source, quint8 index) const;

private:
    QStringList characteristics(CharacteristicSource source) const;

    QStringList m_resistanceThermometers;
    QStringList m_thermocouples;
    std::function<QDateTime()> m_clock = [] { return QDateTime::currentDateTime(); };
};
