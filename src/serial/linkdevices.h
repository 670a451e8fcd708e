#pragma once

#include "serial/exchangequeue.h"

#include <QByteArray>
#include <QList>
#include <QPointer>

#include <deque>
#include <map>
#include <memory>
#include <optional>

class QEventLoop;
class QObject;
class noxSerialPortThread;

/** A reply held back while the events of its instrument are blocked. */
struct HeldReply {
    quint8 address = 0;
    std::unique_ptr<QByteArray> buf;
};

/** All that the multiplexer keeps of one connected instrument. */
struct LinkDevice {
    LinkDevice();
    ~LinkDevice();
    LinkDevice(LinkDevice &&other) noexcept;

    std::unique_ptr<noxSerialPortThread> worker;
    ExchangeQueue<noxSerialPortQueryItem> queries;
    ExchangeQueue<noxSerialPortDataItem> writes;
    std::deque<HeldReply> heldReplies;
    int blocked = 0;                   ///< how often its events were blocked
    QEventLoop *removalWait = nullptr; ///< the local loop in which its removal is waited for

    /** Its worker has a read or a write, whether that is still wanted or not. */
    bool isExchanging() const { return queries.isHandedOver() || writes.isHandedOver(); }
};

/**
 * The connected instruments by `devIndex`, and what is asked of one or of all of them.
 *
 * A record's address holds until it is removed, which may happen while a signal is being received.
 */
class LinkDevices
{
public:
    /** A new record under the smallest free index from 0, or -1 when `most` stand already. */
    int add(int most);
    /** Removes a record and hands it over; `devIndex` must be known. */
    LinkDevice take(int devIndex);

    /** The record of an index; null when there is none. */
    LinkDevice *find(int devIndex);
    const LinkDevice *find(int devIndex) const;
    /** The index of a worker; -1 when it is none, or no longer one. */
    int indexOf(const QObject *worker) const;
    /** All indices, in ascending order. */
    QList<int> indices() const;

    /** Reads, or writes, are queued; false for an unknown device. */
    bool hasQueries(int devIndex) const;
    bool hasWrites(int devIndex) const;
    /** The device has had reads, or writes, or its queues were emptied, and none is queued now. */
    bool hasReadAll(int devIndex) const;
    bool hasSentAll(int devIndex) const;
    /** No device has a queued read or a held reply. */
    bool haveReadAll() const;
    /** No device has a queued write. */
    bool haveSentAll() const;
    /** The queued reads and writes of all devices. */
    int pendingExchanges() const;

private:
    std::map<int, LinkDevice> m_devices;
};

/**
 * Whose an index is at the moment, to be asked after each signal that carries it: a receiver may
 * remove the device, and another one may get its index.
 */
class IndexOwner
{
public:
    IndexOwner(LinkDevices &devices, int devIndex);

    int index() const { return m_devIndex; }
    /** Its device; null when it has gone. */
    LinkDevice *device() const;
    /** Another device has the index: what would be said under it is not about the owner. */
    bool isReplaced() const { return !device() && m_devices.find(m_devIndex); }
    /** The oldest held reply of the device, taken out; nothing when there is none. */
    std::optional<HeldReply> takeHeldReply() const;

private:
    LinkDevices &m_devices;
    int m_devIndex;
    QPointer<noxSerialPortThread> m_worker;
};
