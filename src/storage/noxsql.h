#pragma once

#include <QDateTime>
#include <QMap>
#include <QObject>
#include <QSqlDatabase>
#include <QString>
#include <QTimer>
#include <QVariant>
#include <QVector>

#include <functional>
#include <optional>

class QSqlQuery;

/** Makes sure that the user's database is there: where no file is, a copy of the built-in template
 *  (:/resource/nox8.db) is put and made writable. False when that fails; an existing file is left
 *  alone. */
bool provideDatabase(const QString &path);

/**
 * The user's database: instruments met, snapshots of their configurations, calibration
 * characteristics, and properties of the program and of the instruments.
 *
 * It is the default connection, of which there is one at a time, and on which the statements of
 * storage/storeditems.h run too. While it is not open every operation fails: ids and counts are -1,
 * other results false or empty. Nothing is shown. Each statement is a transaction; what was
 * reported as done is on the disk.
 *
 * A file that takes no changes (another program holds it, its disk is full, it may not be written,
 * or it is gone) is tried again each second. Properties that it has refused are kept until then,
 * and read as if they were stored. A file that was removed is put back.
 */
class noxSql : public QObject
{
    Q_OBJECT
public:
    /** One result of a search. */
    struct noxSqlItem {
        int id = 0;           ///< of the snapshot or characteristic
        QString name;         ///< as the user reads it
        QString info;         ///< description
        bool factory = false; ///< the first snapshot of its instrument
    };

    /** Opens the database file; an empty path opens none. */
    explicit noxSql(const QString &path, QObject *parent = nullptr);
    /** Stores what was refused so far, if it is taken now, compacts the database and closes it. */
    ~noxSql() override;

    /** Whether the file is open; it stays as it is. */
    bool isOpen() const { return m_database.isOpen(); }
    /** Of the file; empty when none was to be opened. */
    QString path() const { return m_database.databaseName(); }
    /** Whether the file is a database of this program that takes changes; it stays as it is. If
     *  not, storingChanged() tells when it does. */
    bool canStore();

    /** Rows of an executed SELECT; the query stands where it stood. */
    static int querySize(QSqlQuery *query);

    // Instruments

    /** The id of the instrument of this type and serial number, which is added if it is new. */
    int addDev(quint32 type, quint32 number, const QString &name);
    /** The row of the instrument with these reference data, type and serial number; else the row of
     *  its type and number, which takes the data; else a new one, -1 when it cannot be added.
     *  Nothing while the database is closed, and when the row does not take the data. */
    std::optional<int> provideDev(const QByteArray *refdata, quint32 type, quint32 number,
                                  const QString &name);
    /** Rewrites an instrument's row. */
    bool updRefData(int deviceId, const QByteArray *refdata, quint32 type, quint32 number,
                    const QString &name);
    /** The only instrument with these reference data, and its type and serial number. */
    int findDev(const QByteArray *refdata, quint32 *type, quint32 *number);
    /** The only instrument of this type and serial number. */
    int findDev(quint32 type, quint32 number);
    /** Removes an instrument with its snapshots and properties, and announces that. */
    bool removeDev(int deviceId);

    // Snapshots

    /** Snapshots of an instrument, the factory one included. */
    int getSnapShotCount(int deviceId);
    /** The description of a snapshot. */
    QString getSnapShotInfo(int snapshotId);
    /**
     * Stores a configuration and returns the snapshot's id.
     *
     * It takes the place of the ordinary snapshot with this id, or, when the id is below 1, of the
     * one with the same blocks. Else it is added; the first of an instrument is its factory
     * snapshot, which is never changed.
     */
    int setSnapShot(int deviceId, const QByteArray *data, const QByteArray *refdata,
                    const QString &info, int snapshotId);
    /** Snapshots with these blocks, of all instruments when the id is below 1; the factory one
     *  last, else the newest first. */
    QVector<noxSqlItem> findSnapShot(const QByteArray *data, const QByteArray *refdata,
                                     int deviceId);

    // Characteristics

    /** Stores a characteristic in the row of this id, or, when the id is below 1, in the row with
     *  the same data; else in a new one. Returns the id. */
    int setFeature(const QByteArray *data, const QString &name, const QString &info, int featureId);
    /** Adds a characteristic and returns its id. */
    int addFeature(const QByteArray *data, const QString &name, const QString &info);
    /** Characteristics whose name contains the text, in either case. */
    QVector<noxSqlItem> findFeature(const QString &text);

    // Properties

    /** Stores a property of the program, or removes it when the value is not valid. */
    bool setAppProperty(const QString &key, const QVariant &value);
    /** A property of the program; not valid when there is none. */
    QVariant getAppProperty(const QString &key);
    /** Stores a property of an instrument, or removes it when the value is not valid. */
    void setDevProperty(int deviceId, const QString &key, const QVariant &value);
    /** Stores properties of instruments, by id and key, in one transaction, which costs about as
     * much as one of them; false, and all are kept, when that is refused. */
    bool setDevProperties(const QMap<QPair<int, QString>, QVariant> &properties);
    /** Whether an instrument has properties of its own; true when that cannot be told. */
    bool hasDevProperty(int deviceId);
    /** The properties of an instrument. One without any has those of the main instrument that
     *  begin with "qwt". */
    QMap<QString, QVariant> getDevProperty(int deviceId);

    /** The clock that dates rows, in place of the computer's. */
    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }

signals:
    /** What is stored has changed on behalf of the user. */
    void onMeasDBChange();
    /** The database takes no changes from now on, or takes them again. */
    void storingChanged(bool isStoring);

private:
    using Properties = QMap<QPair<int, QString>, QVariant>; ///< by instrument, or program, and key
    using NamedProperties = QMap<QString, QVariant>;        ///< of one instrument

    bool storeProperties(const Properties &properties);
    bool writeUnwritten();
    NamedProperties inheritedProperties();
    NamedProperties withUnwritten(int deviceId, NamedProperties properties) const;
    void noteChange(bool isStored);
    int noted(int id);
    int asked(int answer);
    void storeAtEnd();
    bool takesChanges();
    void tryAgain();
    bool reopen();
    bool provideFile();

    QSqlDatabase m_database;
    Properties m_unwritten; ///< what the database has refused so far
    QTimer m_retryTimer;
    bool m_isStoring = true;
    std::function<QDateTime()> m_clock = [] { return QDateTime::currentDateTime(); };
};
