#include <QtGlobal>

#include <sanitizer/tsan_interface.h>

// not every compiler has the header of it
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void *,
                                                                           size_t),
                                                         void (*released)(const volatile void *));

// Tells the thread sanitizer what it cannot see by itself: the queue of events between two threads
// is guarded by mutexes of Qt, which are made of nothing that the sanitizer knows. What a thread
// did before it made an event has happened before the event is delivered.

namespace
{

void noteAllocation(const volatile void *block, size_t)
{
    __tsan_release(const_cast<void *>(block));
}

void noteRelease(const volatile void *) {}

/** `data` is the receiver, the event, and where the result would go. */
bool noteDelivery(void **data)
{
    __tsan_acquire(data[1]);
    return false; // delivered as ever
}

} // namespace

// before any thread is started
[[maybe_unused]] static const bool isWatching =
    __sanitizer_install_malloc_and_free_hooks(noteAllocation, noteRelease) != 0 &&
    QInternal::registerCallback(QInternal::EventNotifyCallback, noteDelivery);
