#pragma once

#include <QByteArray>

#include <atomic>
#include <functional>
#include <memory>

/** How far work on another thread is. */
enum class WorkState { Running, Succeeded, Failed };

/** Shared with the thread that does the work, which sets it last. */
using SharedWorkState = std::shared_ptr<std::atomic<WorkState>>;

/**
 * Lets a thread of its own do something that may wait for the disk, and tells how far it is.
 *
 * Nobody waits for the thread, not even the end of the program: a disk that does not answer holds
 * up nothing. So the work owns all that it uses, and calls nothing of Qt that may be gone by then,
 * such as text codecs. It answers whether it has succeeded.
 */
SharedWorkState startDetached(std::function<bool()> work);

/** Brings what was written to a file to the disk, and waits for that. False when it fails. */
bool syncFile(int descriptor);

/** The same for a file or a folder by its encoded name; a folder's entries are what is brought. */
bool syncPath(const QByteArray &encodedName);
