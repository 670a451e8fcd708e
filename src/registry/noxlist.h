#pragma once

#include "device/optionsnox8.h"
#include "serial/exchangeitems.h"

#include <QMap>
#include <QObject>
#include <QTimer>
#include <QVector>

#include <memory>

class NOXSerialPort;
class noxSql;

/**
 * The registry: one record per instrument that the program works with, connected or not.
 *
 * It maps the four indices of an instrument (registry index, `devIndex` at the multiplexer,
 * `qwtIndex` on the plot, `dbIndex` in the database) to each other, passes measurements on under
 * the registry index with a unit text, and reports a lost connection. GUI thread only.
 */
class noxList : public QObject
{
    Q_OBJECT
public:
    /** One instrument. */
    struct _nox {
        int index = -1;     ///< registry index
        int devIndex = -1;  ///< at the multiplexer; -1 when not connected
        int dbIndex = 0;    ///< in the database; below 1 when not stored
        int snapShotId = 0; ///< stored snapshot equal to the configuration; 0 for none
        int qwtIndex = -1;  ///< on the plot; -1 while it is not there
        quint8 mainCh = 0;  ///< main channel last written to the instrument
        std::unique_ptr<optionsNOX8> opt;
        QString portName;           ///< as given when the record was made; "-" if it had no port
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
    };

    noxList(NOXSerialPort *serialPort, noxSql *database);
    ~noxList() override;

    /** A new record for a device (-1: none); null, after onAddNox(-1, false), when it is full. */
    _nox *newNox(int devIndex, bool wire);
    /** Disconnects the instrument and forgets it. */
    void rmByIndex(int index);
    /** Disconnects the instrument; its record stays. */
    void disConnByIndex(int index);
    /** Passes the instrument's measurements on, or not, optionally clearing the plot on return. */
    void setProccesed(int index, bool on, bool clearOnResume);

    /** The record, or null. It lives until rmByIndex(). */
    _nox *getNoxByIndex(int index) const;
    _nox *getNoxByDevIndex(int devIndex) const;
    _nox *getNoxByQwtIndex(int qwtIndex) const;
    /** The registry index of a device, or -1. */
    int getIndexByDev(int devIndex) const;
    /** The plot index, or -1 for an unknown record. */
    int getQWTIndex(int index) const;
    /** The database id, or -1 for an unknown record. */
    int getDBIndex(int index) const;
    bool isDevIndex(int devIndex) const;
    /** All registry indices, ascending. */
    QList<int> indices() const;

signals:
    /** A record was made (its index), or refused (-1). */
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
    /** Something shown of some record changed. */
    void onChange();
    /** A measurement: channel from 0, unit text. */
    void onReadMeas(int index, double meas, quint8 ch, QString dim);
    /** The instrument's logger: records by channel from 0, start of the recording. */
    void onReadRec(int index, QMap<quint8, QVector<optionsNOX8::_recItem>> records,
                   QDateTime start);
    /** Fired by others: look for this instrument on the ports. */
    void doFindNox(int index);
    /** A fault of the instrument, with the text to show. */
    void onDevError(int index, quint8 code, QString msg);
    /** The series of this plot index are to be cleared. */
    void doClearQwt(int qwtIndex);

private slots:
    void onReadyDevMeas(int devIndex, double meas, quint8 ch, char dim);
    void onLinkError(int devIndex, quint16 code);

private:
    int nextIndex() const;
    void setSignal(_nox *nox);
    void setCommandByte(const _nox *nox);
    void connectSerialPort();
    QString unitText(const _nox &nox, quint8 ch, char dim) const;

    NOXSerialPort *m_serialPort; ///< not owned
    noxSql *m_database;          ///< not owned
    QMap<int, _nox *> m_records; ///< owned, by registry index
};
