#pragma once

#include <atomic>
#include <thread>

/**
 * Watches how long a byte takes through a pseudo-terminal of its own.
 *
 * The kernel carries the bytes in a work queue, which waits a second and more on a machine that is
 * busy elsewhere. What a link did meanwhile says nothing about the link.
 */
class LineWatch
{
public:
    LineWatch();
    ~LineWatch();
    LineWatch(const LineWatch &) = delete;
    LineWatch &operator=(const LineWatch &) = delete;

    /** The longest way of a byte since the last call, ms. */
    int takeSlowestMs() { return slowestMs.exchange(0); }

private:
    void run();

    std::atomic<int> slowestMs{0};
    std::atomic<bool> running{true};
    std::thread thread;
};
