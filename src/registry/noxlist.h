#pragma once

#include "device/heldblocks.h"
#include "device/optionsnox8.h"
#include "serial/exchangeitems.h"

#include <QMap>
#include <QObject>
#include <QTimer>
#include <QVariant>
#include <QVector>

#include <memory>

class BlockExchange;
class InstrumentStore;
class NOXSerialPort;
class noxSql;

/**
 * The registry: one record per instrument that the program works with, connected or not.
 *
 * It maps the four indices of an instrument (registry index, `devIndex` at the multiplexer,
 * `qwtIndex` on the plot, `dbIndex` in the database) to each other, hands the multiplexer's replies
 * to the instrument's image, turns what the image asks for into writes, passes measurements on
 * under the registry index with a unit text, and reports a lost connection. It listens to the
 * multiplexer from its construction on. GUI thread only.
 *
 * A record belongs to the registry from newNox() or addNox() on until it is removed or detached.
 * While it is handed over, between addNox() of the one registry and the detaching from the other,
 * it stands in both. addNox() removes no worker while it runs: that would let other events in.
 */
class noxList : public QObject
{
    Q_OBJECT
public:
    /** What the database has not taken of an instrument so far. */
    struct Refused {
        bool row = false;                            ///< it could not tell the row, nor add it
        QByteArray references;                       ///< that the row has not got
        QPair<QByteArray, QByteArray> firstSnapShot; ///< its blocks
        QMap<QString, QVariant> properties;          ///< that have no row yet
    };

    /** One instrument. */
    struct _nox {
        int index = -1;                      ///< registry index
        int devIndex = -1;                   ///< at the multiplexer; -1 when not connected
        int dbIndex = 0;                     ///< in the database; below 1 when not stored
        QPair<quint32, quint32> rowIdentity; ///< type and serial number that the row is of
        Refused refused;
        int snapShotId = 0; ///< snapshot that it is at, or that the user has changed; 0 for none
        int qwtIndex = -1;  ///< on the plot; -1 while it is not there
        quint8 mainCh = 0;  ///< main channel last written to the instrument
        std::unique_ptr<optionsNOX8> opt;
        QString portName;           ///< where it is or was connected; "-" if it had no port
        QString fileName;           ///< last settings file
        bool processed = true;      ///< its measurements are passed on
        bool clearOnResume = false; ///< clear the plot when they are again
        bool recording = false;
        QString recFileName;
        QString recFieldSep = QStringLiteral(";");
        qint8 recPrecision = 4;
        QString recPointSep;
        quint8 recInterval = 0;
        int recRow = 0;
        QVector<optionsNOX8::tx_code> txCodes; ///< blocks waiting to be written, first come first
        std::unique_ptr<QTimer> txTimer;       ///< collects them for 5 s
        HeldBlocks held;                       ///< what was last read from it or written to it

        bool isConnected() const { return devIndex >= 0; }
        /** Whether it is known who it is, but the database has not taken it yet. */
        bool awaitsRow() const { return refused.row && dbIndex < 1 && opt->isIdentified(); }
    };

    noxList(NOXSerialPort *serialPort, noxSql *database);
    ~noxList() override;

    NOXSerialPort *serialPort() const { return m_serialPort; }
    noxSql *database() const { return m_database; }

    /** A new record for a device (-1: none); null, after onAddNox(-1, false), when it is full. */
    _nox *newNox(int devIndex, bool wire);
    /**
     * Takes over a record of another registry, which has to detach it next, and reads the
     * instrument's blocks. If this registry has a record of the same type and serial number, that
     * one continues on the device of `dev` instead, and `dev` is left to its former registry. False
     * when there are 255 records.
     */
    bool addNox(_nox *dev);
    /** Whether the record stands in this registry. */
    bool owns(const _nox *nox) const { return m_records.value(nox->index) == nox; }
    /** Disconnects the instrument and forgets it. */
    void rmByIndex(int index);
    /** Forgets a record without touching it; whoever has added it owns it. */
    void detachByIndex(int index);
    void detachByDevIndex(int devIndex);
    /** Disconnects the instrument; its record stays. */
    void disConnByIndex(int index);
    /** Takes the instrument to be at the port where it was; stays unconnected when that fails. */
    void connByIndex(int index);
    /** Asks for the instrument to be looked for on the ports. */
    void searchFor(int index) { emit doFindNox(index); }
    /** Reads all blocks of an instrument whose type is known. */
    void getOptFromNox(int index);
    /** Passes the instrument's measurements on, or not, optionally clearing the plot on return. */
    void setProccesed(int index, bool on, bool clearOnResume);
    /** Switches the recording of the instrument, as its record describes it, on or off. */
    void setRecording(int index, bool on);

    /** The record, or null. It lives until rmByIndex(). */
    _nox *getNoxByIndex(int index) const { return m_records.value(index); }
    _nox *getNoxByDevIndex(int devIndex) const;
    _nox *getNoxByQwtIndex(int qwtIndex) const;
    /** The record whose image this is: an index may have passed on to another instrument. */
    _nox *getNoxByImage(const optionsNOX8 *image) const;
    /** The registry index of a device, or -1. */
    int getIndexByDev(int devIndex) const
    {
        const _nox *nox = getNoxByDevIndex(devIndex);
        return nox ? nox->index : -1;
    }
    /** The plot index, or -1 for an unknown record. */
    int getQWTIndex(int index) const
    {
        const _nox *nox = getNoxByIndex(index);
        return nox ? nox->qwtIndex : -1;
    }
    /** The database id, or -1 for an unknown record. */
    int getDBIndex(int index) const
    {
        const _nox *nox = getNoxByIndex(index);
        return nox ? nox->dbIndex : -1;
    }
    bool isDevIndex(int devIndex) const { return getNoxByDevIndex(devIndex) != nullptr; }
    /** All registry indices, ascending. */
    QList<int> indices() const { return m_records.keys(); }

    /** Starts all writes to connected instruments that still wait, instead of collecting on. */
    void writeNow();
    /** How long records made from now on collect writes; 5 s unless a test has set it. */
    void setWriteDelay(int milliseconds) { m_writeDelayMs = milliseconds; }

public slots:
    /** Asks for a block to be written, once, 5 s after the last request for any block. */
    void sendNoxData(int index, optionsNOX8::tx_code tx_code);

signals:
    /** A record was made (its index), or refused (-1); `found`: it was taken over by addNox(). */
    void onAddNox(int index, bool found);
    /** Asks for a block to be written; the registry keeps `buf`. */
    void sendDevData(int devIndex, QByteArray *buf, quint8 address,
                     noxQueryMode mode = noxQueryModeNormal);
    /** The image of a record changed. */
    void onDevChange(int index);
    void onRefChange(int index);
    void onRefShiftChange(int index);
    void onIdentChange(int index);
    void onChChange(int index, quint8 ch);
    /** A record was removed: its former indices. */
    void onRmNox(int index, int qwtIndex);
    /** A block has been written: the instrument holds something else now. */
    void onHeldChange(int index);
    /** Something shown of some record changed. */
    void onChange();
    /** A measurement: channel from 0, unit text. */
    void onReadMeas(int index, double meas, quint8 ch, QString dim);
    /** The instrument's logger: records by channel from 0, start of the recording. */
    void onReadRec(int index, QMap<quint8, QVector<optionsNOX8::_recItem>> records,
                   QDateTime start);
    /** Asks to look for this instrument on the ports. */
    void doFindNox(int index);
    /** A fault of the instrument, with the text to show. */
    void onDevError(int index, quint8 code, QString msg);
    /** The series of this plot index are to be cleared. */
    void doClearQwt(int qwtIndex);

private slots:
    void applyDevQuery(int devIndex, QByteArray *buf, quint8 address);
    void onDoneSendDevData(int devIndex, noxSerialPortDataItem data);
    void onReadyDevMeas(int devIndex, double meas, quint8 ch, char dim);
    void onLinkError(int devIndex, quint16 code);

private:
    int nextIndex() const;
    _nox *findSame(const optionsNOX8 &image) const;
    void continueOn(_nox *known, int devIndex);

    void connectSerialPort();
    void setSignal(_nox *nox);
    void leave(const _nox *nox);

    void writePending(_nox *nox);
    void applyIdentity(_nox *nox);
    void keepUnit(int index, quint8 ch);
    void noteIdentity(int index);
    void noteRefused();
    void storeRefused(int index);

    NOXSerialPort *m_serialPort; ///< not owned
    noxSql *m_database;          ///< not owned
    std::unique_ptr<BlockExchange> m_exchange;
    std::unique_ptr<InstrumentStore> m_store;
    QMap<int, _nox *> m_records;      ///< owned, by registry index
    mutable QHash<int, int> m_likely; ///< registry index by devIndex, where it was found last
    int m_writeDelayMs = 5000;
};
