#include <QtGlobal>

#include <sanitizer/tsan_interface.h>

using BlockHook = void(const volatile void *);
using SizedBlockHook = void(const volatile void *, size_t);
// not every compiler has the header of it
extern "C" int __sanitizer_install_malloc_and_free_hooks(SizedBlockHook *, BlockHook *);

// Tells the thread sanitizer what it cannot see by itself: the queue of events between two threads
// is guarded by mutexes of Qt, which are made of nothing that the sanitizer knows. What a thread
// did before it made an event has happened before the event is delivered.

namespace
{

void noteAllocation(const volatile void *block, size_t)
{
    __tsan_release(const_cast<void *>(block));
}

/** `data` is the receiver, the event, and where the result would go. */
bool noteDelivery(void **data)
{
    __tsan_acquire(data[1]);
    return false; // delivered as ever
}

} // namespace

// before any thread is started
[[maybe_unused]] static const bool isWatching =
    __sanitizer_install_malloc_and_free_hooks(noteAllocation, [](auto) {}) != 0 &&
    QInternal::registerCallback(QInternal::EventNotifyCallback, noteDelivery);
