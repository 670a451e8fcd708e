#pragma once

#include <algorithm>
#include <ctime>
#include <limits>

/** Processor time of this process so far, in nanoseconds. */
inline double processorNanoseconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e9 + double(time.tv_nsec);
}

/** Nanoseconds of processor time that `work` takes, the best of `passes`. */
template<typename Work>
double nanosecondsOf(int passes, Work work)
{
    double best = std::numeric_limits<double>::infinity();
    for (int pass = 0; pass < passes; ++pass) {
        const double start = processorNanoseconds();
        work(pass);
        best = std::min(best, processorNanoseconds() - start);
    }
    return best;
}
