#pragma once

#include "device/channelsettings.h"
#include "device/featurenox8.h"
#include "device/loggerrecords.h"
#include "device/operatingsettings.h"
#include "device/referencedata.h"
#include "device/zeroshifts.h"

#include <QDateTime>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

struct Configuration;
struct InstrumentModel;

/**
 * The configuration image of one instrument: what the program knows of its identity, its settings,
 * its channels, their characteristics, its reference data and its zero shifts.
 *
 * Setters compare before they store: an unchanged value changes nothing and, unless a setter says
 * so, fires nothing, and a channel beyond getDevChCount() is ignored, as is an index that four bits
 * cannot hold or that lies outside the standard list it selects from. Signals ending in Change say
 * that the image changed; those ending in Apply ask for a block to be written to the instrument.
 */
class optionsNOX8 : public QObject,
                    public ReferenceData,
                    public ZeroShifts,
                    public OperatingSettings
{
    Q_OBJECT
public:
    using _chOnOff = qint8;
    using _chMeasType = MeasurementType;
    using _chFeatureType = CharacteristicSource;
    using _chFeatureTypeCompensTP = CompensationSource;
    using _ch = ChannelSettings;
    using _recItem = LoggerItem;

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

    // Settings files

    /** Writes a settings file. False, and an existing file unharmed, when it cannot be written or
     *  could not keep the image: a table of it, or an unknown model. The name of the port is not
     * kept. */
    bool saveToFile(const QString &fileName, const QString &portName) const;
    /** Reads a settings file into the image, which announces what changes (see applySettings()).
     * False when not all of it could be taken; what could is in the image. */
    bool loadFromFile(const QString &fileName);

    // Changes

    /** False for a type that is not in the table, which changes nothing, and for 0. */
    bool setDevType(quint32 type);
    /** Announces identity and device even when the number is the same. */
    void setDevNumber(quint16 number);
    /** Models without the setting keep 0. */
    void setDevZakorotka(_devZakorotka code);
    void setChOnOff(quint8 ch, _chOnOff onOff);
    /** The unit, of which 10 characters are kept, is stored only with measTemperatureCustom, and
     * only if it is not empty. Announced also when only the texts differ. */
    void setChMeasType(quint8 ch, _chMeasType type, QString dim);
    void setChDimCust(quint8 ch, QString dim);
    void setChCurrent(quint8 ch, quint8 index);
    void setChResist(quint8 ch, quint8 index);
    void setChFeature(quint8 ch, _chFeatureType type, quint8 index);
    void setChFeatureCompesTP(quint8 ch, _chFeatureTypeCompensTP type, quint8 index);

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
    /** The reference data were read or loaded, or the model is another. */
    void onRefChange();
    /** The zero shifts were read. */
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
    const InstrumentModel &model() const;
    Configuration configuration() const;
    _ch *usedChannel(quint8 ch);
    template<typename Value>
    void change(quint8 ch, Value _ch::*member, Value value);
    template<typename Source>
    void choose(quint8 ch, Source _ch::*sourceMember, Source source, quint8 _ch::*indexMember,
                quint8 index);
    template<typename Source>
    bool isChoice(Source source, quint8 index) const;
    QStringList characteristics(CharacteristicSource source) const;
    QStringList characteristics(CompensationSource source) const;

    bool readConfiguration(const QByteArray &block);
    bool readReferenceData(const QByteArray &block);
    bool readLogger(const QByteArray &records);
    bool readZeroShifts(const QByteArray &block);
    bool readIdentification(const QByteArray &block);
    bool takeIdentification(const QByteArray &block);
    bool takeExtendedIdentification(const QByteArray &block);

    QStringList m_resistanceThermometers;
    QStringList m_thermocouples;
    std::function<QDateTime()> m_clock = [] { return QDateTime::currentDateTime(); };
};
