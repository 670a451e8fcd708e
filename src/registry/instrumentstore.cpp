#include "registry/instrumentstore.h"

#include "device/featurenox8.h"
#include "storage/noxsql.h"

#include <QPointer>

#include <utility>

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

void InstrumentStore::provideWithReferences(noxList::_nox *nox) const
{
    const optionsNOX8 &image = *nox->opt;
    const QByteArray refdata = taken(image.getRefData(true));
    if (const auto row = m_database->provideDev(&refdata, image.devType, image.devNumber,
                                                image.getDevName(true)))
        noteRow(nox, *row);
    else
        nox->isRowRefused = true;
}

/** A row that cannot be told stays the one that it was, unless it is of another instrument. */
void InstrumentStore::noteRow(noxList::_nox *nox, int row)
{
    const QPair<quint32, quint32> identity(nox->opt->devType, nox->opt->devNumber);
    nox->isRowRefused = row < 1;
    if (nox->isRowRefused && nox->rowIdentity == identity)
        return;
    nox->dbIndex = row;
    if (std::exchange(nox->rowIdentity, identity) != identity)
        nox->factory = {}; // it is of another instrument
}

// What is learnt of it

void InstrumentStore::updateReferences(const noxList::_nox &nox) const
{
    const QByteArray refdata = taken(nox.opt->getRefAllData());
    m_database->updRefData(nox.dbIndex, &refdata, nox.opt->devType, nox.opt->devNumber,
                           nox.opt->getDevName(true));
}

void InstrumentStore::noteWrittenReferences(const noxList::_nox &nox) const
{
    if (nox.opt->isIdentified())
        return updateReferences(nox);
    const QByteArray refdata = taken(nox.opt->getRefAllData());
    quint32 type = 0;
    quint32 number = 0;
    if (m_database->findDev(&refdata, &type, &number) >= 1 && type != nox.opt->devType &&
        number != nox.opt->devNumber)
        updateReferences(nox);
}

void InstrumentStore::keepUnit(const noxList::_nox &nox, quint8 ch) const
{
    if (nox.dbIndex < 1 || ch >= nox.opt->getDevChCount())
        return;
    const QString unit = nox.opt->getChDimCust(ch);
    const bool isCustom = nox.opt->getCh(ch).measType == measTemperatureCustom && !unit.isEmpty();
    m_database->setDevProperty(nox.dbIndex, unitKey(ch), isCustom ? QVariant(unit) : QVariant());
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
    const auto known = nox->isRowRefused ? QVector<noxSql::noxSqlItem>()
                                         : m_database->findSnapShot(&data, &refdata, nox->dbIndex);
    if (!known.isEmpty()) {
        nox->snapShotId = known.first().id;
    } else if (isComplete && nox->factory.first.isEmpty()) {
        nox->factory = {data, refdata};
        storeRefusedFactorySnapShot(nox);
    }
}

void InstrumentStore::storeRefusedFactorySnapShot(noxList::_nox *nox) const
{
    const auto &[data, refdata] = nox->factory;
    if (data.isEmpty() || nox->isRowRefused)
        return;
    const int count = m_database->getSnapShotCount(nox->dbIndex);
    if (count > 0 ||
        (count == 0 && m_database->setSnapShot(nox->dbIndex, &data, &refdata,
                                               noxList::tr("Заводская настройка"), 0) >= 1))
        nox->factory = {};
}
