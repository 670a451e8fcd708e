#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <poll.h>
#include <pty.h>
#include <thread>
#include <unistd.h>

/**
 * Watches how long a byte takes through a pseudo-terminal of its own.
 *
 * The kernel carries the bytes in a work queue, which waits a second and more on a machine that is
 * busy elsewhere. What a link did meanwhile says nothing about the link.
 */
class LineWatch
{
public:
    LineWatch()
        : thread([this] { run(); })
    {
    }
    ~LineWatch()
    {
        running = false;
        thread.join();
    }
    LineWatch(const LineWatch &) = delete;
    LineWatch &operator=(const LineWatch &) = delete;

    /** The longest way of a byte since the last call, ms. */
    int takeSlowestMs() { return slowestMs.exchange(0); }

private:
    void run()
    {
        using namespace std::chrono;
        termios raw{};
        ::cfmakeraw(&raw);
        int master = -1, slave = -1;
        ::openpty(&master, &slave, nullptr, &raw, nullptr);
        bool arrives = true;
        while (running && arrives) {
            const auto begin = steady_clock::now();
            char byte = 'x';
            pollfd arrived{master, POLLIN, 0};
            arrives = ::write(slave, &byte, 1) == 1 && ::poll(&arrived, 1, -1) == 1 &&
                      ::read(master, &byte, 1) == 1;
            const auto took = duration_cast<milliseconds>(steady_clock::now() - begin);
            slowestMs = std::max(slowestMs.load(), int(took.count()));
            std::this_thread::sleep_for(milliseconds(10));
        }
        ::close(slave);
        ::close(master);
    }

    std::atomic<int> slowestMs{0};
    std::atomic<bool> running{true};
    std::thread thread;
};
