#include "registry/instrumentstore.h"

#include "device/featurenox8.h"
#include "storage/noxsql.h"

#include <QPointer>

#include <utility>

namespace
{

QPair<quint32, quint32> identityOf(const optionsNOX8 &image)
{
    return {image.devType, image.devNumber};
}

} // namespace

QString unitKey(quint8 ch)
{
    return QStringLiteral("ch_%1-dim").arg(ch);
}

// Who it is

void InstrumentStore::find(noxList::_nox *nox) const
{
    if (nox->opt->identValid)
        nox->dbIndex = m_database->findDev(nox->opt->devType, nox->opt->devNumber);
    else if (!recognise(nox))
        nox->dbIndex = -1;
}

bool InstrumentStore::recognise(noxList::_nox *nox) const
{
    const QByteArray refdata = taken(nox->opt->getRefAllData());
    quint32 type = 0;
    quint32 number = 0;
    const int row = m_database->findDev(&refdata, &type, &number);
    if (row < 1)
        return false;
    nox->dbIndex = row; // first: who hears of the identity asks for it
    noteIdentity(nox, {type, number});
    const QPointer<optionsNOX8> image = nox->opt.get(); // ... and may remove the instrument
    image->setDevType(type);
    if (image)
        image->setDevNumber(quint16(number));
    return true;
}

void InstrumentStore::provide(noxList::_nox *nox) const
{
    const optionsNOX8 &image = *nox->opt;
    noteRow(nox, m_database->addDev(image.devType, image.devNumber, image.getDevName(true)));
}

void InstrumentStore::provideWithReferences(noxList::_nox *nox,
                                            const ReferenceData &references) const
{
    const optionsNOX8 &image = *nox->opt;
    const QByteArray refdata = encodeReferenceData(references, noStamp());
    if (const auto row = m_database->provideDev(&refdata, image.devType, image.devNumber,
                                                image.getDevName(true)))
        return noteRow(nox, *row);
    noteIdentity(nox, identityOf(image));
    nox->refused.row = true;
}

/** Forgets what has been refused of another instrument; whether the row was of another one. */
bool InstrumentStore::noteIdentity(noxList::_nox *nox, const QPair<quint32, quint32> &identity)
{
    const bool isOther = std::exchange(nox->rowIdentity, identity) != identity;
    if (isOther)
        nox->refused = {};
    return isOther;
}

/** A row that cannot be told stays the one that it was, unless it is of another instrument. */
void InstrumentStore::noteRow(noxList::_nox *nox, int row) const
{
    const bool isOther = noteIdentity(nox, identityOf(*nox->opt));
    nox->refused.row = row < 1;
    if (nox->refused.row && !isOther)
        return;
    nox->dbIndex = row;
}

// What is learnt of it

void InstrumentStore::updateReferences(noxList::_nox *nox) const
{
    storeReferences(nox, taken(nox->opt->getRefAllData()));
}

void InstrumentStore::storeReferences(noxList::_nox *nox, const QByteArray &refdata) const
{
    const optionsNOX8 &image = *nox->opt;
    const bool isStored = m_database->updRefData(nox->dbIndex, &refdata, image.devType,
                                                 image.devNumber, image.getDevName(true));
    nox->refused.references = isStored ? QByteArray() : refdata;
}

void InstrumentStore::noteWrittenReferences(noxList::_nox *nox) const
{
    const optionsNOX8 &image = *nox->opt;
    if (image.isIdentified())
        return updateReferences(nox);
    const QByteArray refdata = taken(image.getRefAllData());
    quint32 type = 0;
    quint32 number = 0;
    if (m_database->findDev(&refdata, &type, &number) >= 1 && type != image.devType &&
        number != image.devNumber)
        updateReferences(nox);
}

void InstrumentStore::keepUnit(noxList::_nox *nox, quint8 ch) const
{
    const optionsNOX8 &image = *nox->opt;
    if (ch >= image.getDevChCount())
        return;
    const QString unit = image.getChDimCust(ch);
    const bool isCustom = image.getCh(ch).measType == measTemperatureCustom && !unit.isEmpty();
    const QVariant property = isCustom ? QVariant(unit) : QVariant();
    if (nox->dbIndex >= 1)
        m_database->setDevProperty(nox->dbIndex, unitKey(ch), property);
    else if (nox->awaitsRow() && (isCustom || nox->refused.properties.contains(unitKey(ch))))
        nox->refused.properties.insert(unitKey(ch), property); // a stored one has not been read
}

// How it is set

QByteArray InstrumentStore::snapShotContent(const noxList::_nox &nox)
{
    if (nox.snapShotId == 0)
        return {};
    return taken(nox.opt->getData()) + taken(nox.opt->getRefAllData());
}

bool InstrumentStore::leaveSnapShot(noxList::_nox *nox, const QByteArray &contentBefore)
{
    return !contentBefore.isEmpty() && snapShotContent(*nox) != contentBefore &&
           std::exchange(nox->snapShotId, 0) != 0;
}

void InstrumentStore::recogniseSnapShot(noxList::_nox *nox, bool isComplete) const
{
    const QByteArray data = taken(nox->opt->getData());
    const QByteArray refdata = taken(nox->opt->getRefAllData());
    const auto known = nox->refused.row ? QVector<noxSql::noxSqlItem>()
                                        : m_database->findSnapShot(&data, &refdata, nox->dbIndex);
    if (!known.isEmpty()) {
        nox->snapShotId = known.first().id;
    } else if (isComplete) {
        if (nox->refused.firstSnapShot.first.isEmpty())
            nox->refused.firstSnapShot = {data, refdata};
        storeFirstSnapShot(nox);
    }
}

// What the database has refused

bool InstrumentStore::seekRow(noxList::_nox *nox) const
{
    const auto references = nox->held.referenceData();
    if (!nox->opt->isIdentified()) {
        if (nox->dbIndex < 1 && references && !nox->opt->identValid)
            recognise(nox);
        return false;
    }
    noteLostRow(nox);
    const bool isSought = nox->refused.row;
    // data that have not been read must not take the place of those that are stored
    if (isSought && !nox->opt->identValid && references)
        provideWithReferences(nox, *references);
    return isSought;
}

/** When the row is not that of the instrument any more, as in another database. */
void InstrumentStore::noteLostRow(noxList::_nox *nox) const
{
    const optionsNOX8 &image = *nox->opt;
    if (nox->dbIndex < 1)
        return;
    const int row = m_database->findDev(image.devType, image.devNumber);
    if (row == nox->dbIndex || (row < 1 && !m_database->canStore())) // which cannot tell it, either
        return;
    nox->dbIndex = -1;
    nox->refused.row = true;
    nox->snapShotId = 0;
}

void InstrumentStore::storeRefused(noxList::_nox *nox) const
{
    if (nox->refused.row || nox->dbIndex < 1 || !nox->opt->isIdentified())
        return;
    storeProperties(nox);
    if (!nox->refused.references.isEmpty())
        storeReferences(nox, std::exchange(nox->refused.references, {}));
    storeFirstSnapShot(nox);
}

void InstrumentStore::storeProperties(noxList::_nox *nox) const
{
    const auto refused = std::exchange(nox->refused.properties, {});
    if (refused.isEmpty())
        return;
    QMap<QPair<int, QString>, QVariant> ofRow;
    // with those that it inherits: the first one of its own would end that
    for (const auto &properties : {m_database->getDevProperty(nox->dbIndex), refused})
        for (auto property = properties.cbegin(); property != properties.cend(); ++property)
            ofRow.insert({nox->dbIndex, property.key()}, property.value());
    m_database->setDevProperties(ofRow);
}

void InstrumentStore::storeFirstSnapShot(noxList::_nox *nox) const
{
    const auto &[data, refdata] = nox->refused.firstSnapShot;
    if (data.isEmpty() || nox->refused.row)
        return;
    const int count = m_database->getSnapShotCount(nox->dbIndex);
    if (count > 0 ||
        (count == 0 && m_database->setSnapShot(nox->dbIndex, &data, &refdata,
                                               noxList::tr("Заводская настройка"), 0) >= 1))
        nox->refused.firstSnapShot = {};
}
