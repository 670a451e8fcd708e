#pragma once

#include <QString>

/** Counts how often a device file is opened, by whatever process, from its construction on. */
class OpenWatch
{
public:
    explicit OpenWatch(const QString &path);
    ~OpenWatch();
    Q_DISABLE_COPY(OpenWatch)

    /** Openings since the construction; -1 when the system refuses to tell. */
    int opens();

private:
    int notifier = -1;
    int counted = 0;
};
