#pragma once

#include "registry/noxlist.h"

/** The property of an instrument under which the unit of a channel, from 0, is stored. */
QString unitKey(quint8 ch);

/** Finds the instruments of records in the database, and keeps there what was learnt of them. */
class InstrumentStore
{
public:
    /** The database is not owned. */
    explicit InstrumentStore(noxSql *database)
        : m_database(database)
    {
    }

    /** Finds the row of an instrument, by type and number if it has told them, else by its
     *  reference data; `dbIndex` is -1 when there is none. */
    void find(noxList::_nox *nox) const;
    /** Finds the row with the reference data of an instrument, whose type and number the image
     *  takes. False, and nothing is changed, when there is none. */
    bool recognise(noxList::_nox *nox) const;
    /** Finds the row of type and number, or adds one. While the database refuses that, `dbIndex` is
     *  -1, or the row that was known already. */
    void provide(noxList::_nox *nox) const;
    /** The same, with these reference data in the row. It is refused, too, while the database is
     *  closed, and when a row that is there does not take them; `dbIndex` stays as it is then. */
    void provideWithReferences(noxList::_nox *nox, const ReferenceData &references) const;

    /** Brings the row up to the image. */
    void updateReferences(noxList::_nox *nox) const;
    /** The same after the instrument has taken reference data; those of one that has not told who
     *  it is only where the row that holds them already is of another type and number. */
    void noteWrittenReferences(noxList::_nox *nox) const;
    /** Keeps the user's unit of a channel, or that there is none. */
    void keepUnit(noxList::_nox *nox, quint8 ch) const;

    /** All that a snapshot keeps of an instrument that is at one; empty for any other. */
    static QByteArray snapShotContent(const noxList::_nox &nox);
    /** An instrument whose configuration turns out to be another than the image had is at no
     *  snapshot any more; whether it was at one. What the user changes stays that of his. */
    static bool leaveSnapShot(noxList::_nox *nox, const QByteArray &contentBefore);
    /** Finds the snapshot that is equal to the configuration. The very first configuration of an
     *  instrument is stored, if all of it has been read (`isComplete`). */
    void recogniseSnapShot(noxList::_nox *nox, bool isComplete) const;

    /** Looks for the row again once the database can be asked, which may be another one by then;
     *  whether it was missing. */
    bool seekRow(noxList::_nox *nox) const;
    /** Stores what the database has refused, if the instrument has its row by now. */
    void storeRefused(noxList::_nox *nox) const;

private:
    static bool noteIdentity(noxList::_nox *nox, const QPair<quint32, quint32> &identity);
    void noteRow(noxList::_nox *nox, int row) const;
    void noteLostRow(noxList::_nox *nox) const;
    void storeReferences(noxList::_nox *nox, const QByteArray &refdata) const;
    void storeProperties(noxList::_nox *nox) const;
    void storeFirstSnapShot(noxList::_nox *nox) const;

    noxSql *m_database;
};
