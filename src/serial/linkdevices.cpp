#include "serial/linkdevices.h"

#include "serial/noxserialportthread.h"

#include <algorithm>

LinkDevice::LinkDevice() = default;
LinkDevice::~LinkDevice() = default;
LinkDevice::LinkDevice(LinkDevice &&other) noexcept = default;

int LinkDevices::add(int most)
{
    if (int(m_devices.size()) >= most)
        return -1;
    int devIndex = 0;
    while (find(devIndex))
        ++devIndex;
    m_devices.try_emplace(devIndex);
    return devIndex;
}

LinkDevice LinkDevices::take(int devIndex)
{
    const auto found = m_devices.find(devIndex);
    LinkDevice device = std::move(found->second);
    m_devices.erase(found);
    return device;
}

LinkDevice *LinkDevices::find(int devIndex)
{
    const auto found = m_devices.find(devIndex);
    return found == m_devices.end() ? nullptr : &found->second;
}

const LinkDevice *LinkDevices::find(int devIndex) const
{
    const auto found = m_devices.find(devIndex);
    return found == m_devices.end() ? nullptr : &found->second;
}

int LinkDevices::indexOf(const QObject *worker) const
{
    const auto found =
        std::find_if(m_devices.begin(), m_devices.end(),
                     [worker](const auto &entry) { return entry.second.worker.get() == worker; });
    return found == m_devices.end() ? -1 : found->first;
}

QList<int> LinkDevices::indices() const
{
    QList<int> indices;
    for (const auto &entry : m_devices)
        indices.append(entry.first);
    return indices;
}

bool LinkDevices::hasQueries(int devIndex) const
{
    const LinkDevice *device = find(devIndex);
    return device && !device->queries.isEmpty();
}

bool LinkDevices::hasWrites(int devIndex) const
{
    const LinkDevice *device = find(devIndex);
    return device && !device->writes.isEmpty();
}

bool LinkDevices::hasReadAll(int devIndex) const
{
    const LinkDevice *device = find(devIndex);
    return device && device->queries.wasUsed() && device->queries.isEmpty();
}

bool LinkDevices::hasSentAll(int devIndex) const
{
    const LinkDevice *device = find(devIndex);
    return device && device->writes.wasUsed() && device->writes.isEmpty();
}

bool LinkDevices::haveReadAll() const
{
    return std::all_of(m_devices.begin(), m_devices.end(), [](const auto &entry) {
        return entry.second.queries.isEmpty() && entry.second.heldReplies.empty();
    });
}

bool LinkDevices::haveSentAll() const
{
    return std::all_of(m_devices.begin(), m_devices.end(),
                       [](const auto &entry) { return entry.second.writes.isEmpty(); });
}

int LinkDevices::pendingExchanges() const
{
    int pending = 0;
    for (const auto &[devIndex, device] : m_devices)
        pending += device.queries.size() + device.writes.size();
    return pending;
}

IndexOwner::IndexOwner(LinkDevices &devices, int devIndex)
    : m_devices(devices)
    , m_devIndex(devIndex)
{
    if (const LinkDevice *const device = devices.find(devIndex))
        m_worker = device->worker.get();
}

LinkDevice *IndexOwner::device() const
{
    LinkDevice *const device = m_devices.find(m_devIndex);
    return device && m_worker && device->worker.get() == m_worker ? device : nullptr;
}

std::optional<HeldReply> IndexOwner::takeHeldReply() const
{
    LinkDevice *const owner = device();
    if (!owner || owner->heldReplies.empty())
        return std::nullopt;
    std::optional<HeldReply> reply = std::move(owner->heldReplies.front());
    owner->heldReplies.pop_front();
    return reply;
}
