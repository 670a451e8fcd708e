#include "support/openwatch.h"

#include <QFile>

#include <sys/inotify.h>
#include <unistd.h>

OpenWatch::OpenWatch(const QString &device)
    : lockName("LCK.." + QFile::encodeName(device).mid(int(sizeof "/dev/") - 1).replace('/', '_'))
    , notifier(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    // where QSerialPort may put its lock; the deletions keep two creations apart, which would be
    // told as one
    int watched = 0;
    for (const char *directory :
         {"/var/lock", "/etc/locks", "/var/spool/locks", "/var/spool/uucp", "/tmp", "/var/tmp"})
        watched += ::inotify_add_watch(notifier, directory, IN_CREATE | IN_DELETE) >= 0 ? 1 : 0;
    if (watched == 0)
        counted = -1;
}

OpenWatch::~OpenWatch()
{
    ::close(notifier);
}

int OpenWatch::opens()
{
    if (counted < 0)
        return counted;
    alignas(inotify_event) char buffer[4096];
    for (ssize_t length = 0; (length = ::read(notifier, buffer, sizeof buffer)) > 0;) {
        for (const char *at = buffer; at < buffer + length;) {
            const auto *event = reinterpret_cast<const inotify_event *>(at);
            if ((event->mask & IN_CREATE) && event->len > 0 && lockName == event->name)
                ++counted;
            at += sizeof *event + event->len;
        }
    }
    return counted;
}
