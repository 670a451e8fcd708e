#include "support/openwatch.h"

#include <QFile>

#include <sys/inotify.h>
#include <unistd.h>

OpenWatch::OpenWatch(const QString &path)
    : notifier(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    // the closings keep two openings apart, which would be told as one
    if (::inotify_add_watch(notifier, QFile::encodeName(path).constData(), IN_OPEN | IN_CLOSE) < 0)
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
    // a watched file tells no names, so every event has the same length
    inotify_event events[64];
    for (ssize_t length = 0; (length = ::read(notifier, events, sizeof events)) > 0;) {
        for (size_t i = 0; i < size_t(length) / sizeof *events; ++i)
            counted += (events[i].mask & IN_OPEN) ? 1 : 0;
    }
    return counted;
}
