#include "plot/differences.h"

void pairDifferences(const Series &times, const Series &referenceTimes,
                     const std::function<void(int point, int referencePoint)> &paired)
{
    int reference = 0;
    for (int i = 0; i < times.size(); ++i) {
        while (i > 0 && reference < referenceTimes.size() &&
               referenceTimes[reference] < times[i - 1])
            ++reference;
        if (reference == referenceTimes.size())
            return;
        if (referenceTimes[reference] <= times[i])
            paired(i, reference++);
    }
}
