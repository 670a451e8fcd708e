#include "slowclose.h"

#include "serial/noxserialportthread.h"

#include <atomic>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

std::atomic<int> delayMs{0};

bool isPortOfLink(int descriptor)
{
    return ::isatty(descriptor) &&
           qobject_cast<const noxSerialPortThread *>(QThread::currentThread());
}

} // namespace

void setPortCloseDelay(int milliseconds)
{
    delayMs = milliseconds;
}

/** Stands before that of the C library, for all that the program links. */
extern "C" int close(int descriptor)
{
    if (delayMs > 0 && isPortOfLink(descriptor))
        QThread::msleep(static_cast<unsigned long>(delayMs));
    return static_cast<int>(::syscall(SYS_close, descriptor));
}
