#include "serial/portcatalog.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSerialPortInfo>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace
{

std::unique_ptr<PortCatalog> &catalogInEffect()
{
    static std::unique_ptr<PortCatalog> catalog = std::make_unique<MachinePortCatalog>();
    return catalog;
}

/** Whether a process that runs holds the lock file which Qt SerialPort writes for `device`. */
bool isLockedByName(const QString &device)
{
    static const char *const lockDirectories[] = {
        "/var/lock", "/etc/locks", "/var/spool/locks", "/var/spool/uucp", "/tmp", "/var/tmp"};
    QString lockName = device;
    lockName.remove(QStringLiteral("/dev/")).replace(QLatin1Char('/'), QLatin1Char('_'));
    lockName.prepend(QStringLiteral("LCK.."));
    for (const char *directory : lockDirectories) {
        qint64 processId = 0;
        QString hostName;
        QString applicationName;
        QLockFile lock(QDir(QString::fromLatin1(directory)).filePath(lockName));
        if (lock.getLockInfo(&processId, &hostName, &applicationName))
            return ::kill(pid_t(processId), 0) == 0 || errno == EPERM;
    }
    return false;
}

/** A port as far as its device file tells who may open it. */
SerialPortEntry portOf(const QString &name, const QString &device, bool busy)
{
    SerialPortEntry port{name, device, busy};
    const QFileInfo file(device);
    port.denied = file.exists() && !(file.isReadable() && file.isWritable());
    if (port.denied && file.permission(QFile::ReadGroup | QFile::WriteGroup))
        port.group = file.group();
    return port;
}

/** The port that a link is; one with an empty name when its target is not there. */
SerialPortEntry portOf(const QFileInfo &link)
{
    if (!link.isSymLink() || !link.exists() || link.isDir())
        return {};
    const QString device = link.canonicalFilePath();
    return portOf(link.fileName(), device, isLockedByName(device));
}

SerialPortEntry portOf(const QSerialPortInfo &port)
{
    return portOf(port.portName(), port.systemLocation(), port.isBusy());
}

} // namespace

SerialPortEntry PortCatalog::find(const QString &name) const
{
    const QVector<SerialPortEntry> all = ports();
    const auto found = std::find_if(all.begin(), all.end(), [&name](const SerialPortEntry &entry) {
        return entry.name == name;
    });
    return found == all.end() ? SerialPortEntry() : *found;
}

const PortCatalog &PortCatalog::current()
{
    return *catalogInEffect();
}

void PortCatalog::setCurrent(std::unique_ptr<PortCatalog> catalog)
{
    catalogInEffect() = catalog ? std::move(catalog) : std::make_unique<MachinePortCatalog>();
}

VirtualPortCatalog::VirtualPortCatalog(const QString &directory)
    : m_directory(directory)
{
}

QVector<SerialPortEntry> VirtualPortCatalog::ports() const
{
    QVector<SerialPortEntry> entries;
    const auto links = QDir(m_directory).entryInfoList(QDir::Files | QDir::System, QDir::Name);
    for (const QFileInfo &link : links) {
        const SerialPortEntry port = portOf(link);
        if (!port.name.isEmpty())
            entries.append(port);
    }
    return entries;
}

SerialPortEntry VirtualPortCatalog::find(const QString &name) const
{
    const QFileInfo link(QDir(m_directory), name);
    return !name.isEmpty() && link.fileName() == name ? portOf(link) : SerialPortEntry();
}

QString VirtualPortCatalog::defaultDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
           QStringLiteral("/nox8/ports");
}

QVector<SerialPortEntry> MachinePortCatalog::ports() const
{
    QVector<SerialPortEntry> entries;
    const auto systemPorts = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : systemPorts)
        entries.append(portOf(port));

    const auto virtualPorts = VirtualPortCatalog().ports();
    for (const SerialPortEntry &port : virtualPorts) {
        const bool nameTaken =
            std::any_of(entries.begin(), entries.end(),
                        [&port](const SerialPortEntry &entry) { return entry.name == port.name; });
        if (!nameTaken)
            entries.append(port);
    }
    return entries;
}

SerialPortEntry MachinePortCatalog::find(const QString &name) const
{
    const QSerialPortInfo port(name);
    return port.isNull() ? VirtualPortCatalog().find(name) : portOf(port);
}
