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

std::optional<HeldReply> LinkDevices::takeHeldReply(int devIndex)
{
    LinkDevice *const device = find(devIndex);
    if (!device || device->heldReplies.empty())
        return std::nullopt;
    std::optional<HeldReply> reply = std::move(device->heldReplies.front());
    device->heldReplies.pop_front();
    return reply;
}
