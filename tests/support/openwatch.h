#pragma once

#include <QByteArray>
#include <QFile>

#include <sys/inotify.h>
#include <unistd.h>

/**
 * Counts how often QSerialPort opens a device, from its construction on.
 *
 * It looks at the lock files, because a simulated instrument opens its own device now and then.
 */
class OpenWatch
{
public:
    /** `device` is a path under /dev. */
    explicit OpenWatch(const QString &device)
        : m_lockName("LCK.." + QFile::encodeName(device.mid(5)).replace('/', '_'))
        , m_notifier(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        // where QSerialPort may put its lock; the deletions keep two creations apart, which would
        // be told as one
        for (const char *directory :
             {"/var/lock", "/etc/locks", "/var/spool/locks", "/var/spool/uucp", "/tmp", "/var/tmp"})
            inotify_add_watch(m_notifier, directory, IN_CREATE | IN_DELETE);
    }
    ~OpenWatch() { close(m_notifier); }
    Q_DISABLE_COPY(OpenWatch)

    /** Openings since the construction. */
    int opens()
    {
        alignas(inotify_event) char buffer[4096];
        for (ssize_t length = 0; (length = read(m_notifier, buffer, sizeof buffer)) > 0;) {
            for (const char *at = buffer; at < buffer + length;) {
                const auto *event = reinterpret_cast<const inotify_event *>(at);
                if ((event->mask & IN_CREATE) && event->len > 0 && m_lockName == event->name)
                    ++m_opens;
                at += sizeof *event + event->len;
            }
        }
        return m_opens;
    }

private:
    QByteArray m_lockName;
    int m_notifier;
    int m_opens = 0;
};
