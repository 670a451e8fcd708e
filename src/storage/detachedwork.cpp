#include "storage/detachedwork.h"

#include <fcntl.h>
#include <system_error>
#include <thread>
#include <unistd.h>

SharedWorkState startDetached(std::function<bool()> work)
{
    auto state = std::make_shared<std::atomic<WorkState>>(WorkState::Running);
    const auto run = [state, work = std::move(work)] {
        *state = work() ? WorkState::Succeeded : WorkState::Failed;
    };
    try {
        std::thread(run).detach();
    } catch (const std::system_error &) {
        run(); // no more threads: then somebody has to wait
    }
    return state;
}

bool syncFile(int descriptor)
{
    return ::fsync(descriptor) == 0;
}

bool syncPath(const QByteArray &encodedName)
{
    const int descriptor = ::open(encodedName.constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool isSynced = syncFile(descriptor);
    ::close(descriptor);
    return isSynced;
}
