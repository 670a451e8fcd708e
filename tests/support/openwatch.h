#pragma once

#include <QByteArray>

/**
 * Counts how often QSerialPort opens a device, from its construction on.
 *
 * It looks at the lock files, because a simulated instrument opens its own device now and then.
 */
class OpenWatch
{
public:
    /** `device` is a path under /dev. */
    explicit OpenWatch(const QString &device);
    ~OpenWatch();
    Q_DISABLE_COPY(OpenWatch)

    /** Openings since the construction; -1 when the system refuses to tell. */
    int opens();

private:
    QByteArray lockName;
    int notifier = -1;
    int counted = 0;
};
