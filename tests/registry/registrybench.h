#pragma once

#include "device/featurenox8.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "support/instrumentbench.h"

#include <QTemporaryDir>
#include <QtTest>

#include <utility>

constexpr int patienceMs = 30000;
constexpr quint32 typeB = 0x11; // eight channels
constexpr quint32 typeCM = 0x22;
constexpr quint32 typeCM1Extended = 0x0960AA0F;

/** A registry with its database and its multiplexer, the ports, and what the registry announces. */
class RegistryBench
{
public:
    RegistryBench()
    {
        port.setLinkTiming(timing());
        list.setWriteDelay(30);
        note(&noxList::onAddNox, "added");
        note(&noxList::sendDevData, "write");
        note(&noxList::onDevChange, "device");
        note(&noxList::onRefChange, "references");
        note(&noxList::onRefShiftChange, "shifts");
        note(&noxList::onIdentChange, "identity");
        note(&noxList::onChChange, "channel");
        note(&noxList::onRmNox, "removed");
        note(&noxList::onHeldChange, "held");
        note(&noxList::onChange, "change");
        note(&noxList::doFindNox, "find");
        note(&noxList::onDevError, "error");
        note(&noxList::doClearQwt, "clear");
        QObject::connect(&list, &noxList::onReadMeas, &list,
                         [this](int index, double value, quint8 ch, const QString &unit) {
                             measured
                                 << QString("%1: %2 %3 %4").arg(index).arg(ch).arg(value).arg(unit);
                         });
    }

    static LinkTiming timing()
    {
        LinkTiming timing = shortTiming();
        timing.startBase = timing.queueDelay = 5;
        timing.attemptDelay = 50;
        // a machine under load lets an instrument wait, and three attempts are all that a scan
        // makes
        timing.initDelay = 250;
        timing.unitTimeout = timing.confirmTimeout = 500;
        return timing;
    }

    /** What was announced since the last look, as "change;removed 0 40"; no measurements. */
    QString news() { return std::exchange(journal, {}).join(';'); }

    /** Plugs an instrument in; one that is older does not know who it is. */
    void add(const QString &portName, const QString &model, quint16 number, bool isOlder = false,
             int ignoredAddressings = 0)
    {
        SimulatedInstrumentOptions options = instruments.steadyInstrument();
        options.identity.modelName = model;
        options.identity.serialNumber = number;
        options.identity.answersIdentification = !isOlder;
        options.faults.ignoredAddressings = ignoredAddressings;
        QVERIFY(instruments.add(portName, options));
    }
    /** Waits until the configuration in the registry is that of the instrument. */
    bool isRead(int index)
    {
        const auto isRead = [this, index] {
            const noxList::_nox *nox = list.getNoxByIndex(index);
            return nox && taken(nox->opt->getData()) == instruments.host.block(nox->portName, 2) &&
                   port.isReadAllQuery();
        };
        return QTest::qWaitFor(isRead, patienceMs);
    }

    QTemporaryDir folder;
    noxSql database{provided(folder.filePath("nox8.db"))};
    InstrumentBench instruments;
    NOXSerialPort port;
    noxList list{&port, &database};
    QStringList measured; ///< measurements, as "0: 3 20.5 °С": index, channel, value, unit

private:
    static QString provided(const QString &path) { return provideDatabase(path) ? path : "none"; }

    template<typename... Arguments>
    void note(void (noxList::*signal)(Arguments...), const QString &name)
    {
        QObject::connect(&list, signal, &list, [this, name](Arguments... arguments) {
            journal << QStringList{name, textOf(arguments)...}.join(' ');
        });
    }
    template<typename Value>
    static QString textOf(const Value &value)
    {
        return QString("%1").arg(value);
    }
    static QString textOf(QByteArray *block) { return QString("[%1]").arg(block->size()); }

    QStringList journal;
};
