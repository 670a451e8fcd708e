#include "waiting.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTextStream>
#include <QTimer>

void waitMs(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool waitUntil(const std::function<bool()> &condition, const QString &awaited, int patienceSeconds)
{
    constexpr int periodMs = 100;
    QElapsedTimer waited;
    waited.start();
    while (!condition() && waited.elapsed() < patienceSeconds * 1000)
        waitMs(periodMs);
    if (condition())
        return true;
    QTextStream(stderr) << awaited << " did not come within " << patienceSeconds << " s\n";
    return false;
}
