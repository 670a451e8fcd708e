#include "support/linewatch.h"

#include <algorithm>
#include <chrono>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

namespace
{

constexpr int pauseMs = 10;

/** The two ends of a raw pseudo-terminal. */
struct Line {
    int master = -1;
    int slave = -1;

    Line()
    {
        termios raw{};
        ::cfmakeraw(&raw);
        ::openpty(&master, &slave, nullptr, &raw, nullptr);
    }
    ~Line()
    {
        ::close(slave);
        ::close(master);
    }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    /** Sends a byte and waits for it; false once the line is broken. */
    bool carryByte()
    {
        char byte = 'x';
        pollfd arrived{master, POLLIN, 0};
        return ::write(slave, &byte, 1) == 1 && ::poll(&arrived, 1, -1) == 1 &&
               ::read(master, &byte, 1) == 1;
    }
};

} // namespace

LineWatch::LineWatch()
    : thread([this] { run(); })
{
}

LineWatch::~LineWatch()
{
    running = false;
    thread.join();
}

void LineWatch::run()
{
    using namespace std::chrono;
    Line line;
    while (running) {
        const auto begin = steady_clock::now();
        if (!line.carryByte())
            return;
        const auto took = duration_cast<milliseconds>(steady_clock::now() - begin);
        slowestMs = std::max(slowestMs.load(), int(took.count()));
        std::this_thread::sleep_for(milliseconds(pauseMs));
    }
}
