#pragma once

#include <QString>
#include <QVector>

#include <sys/types.h>

/** The two ends of a pipe, closed when it goes. */
class Pipe
{
public:
    Pipe();
    ~Pipe();
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;

    bool isOpen() const { return m_ends[0] >= 0; }
    void closeReader() { closeEnd(m_ends[0]); }
    void closeWriter() { closeEnd(m_ends[1]); }
    bool read(void *data, size_t size);
    bool write(const void *data, size_t size);
    /** The end to write to, for a program that is started with it. */
    int writer() const { return m_ends[1]; }

private:
    static void closeEnd(int &end);

    int m_ends[2] = {-1, -1};
};

/** So many instruments of mixed models, each so fast. */
struct FleetOptions {
    int instruments;
    double tokensPerSecond;
};

/**
 * Simulated instruments in a process of their own, so that what is measured of this process is the
 * program's alone. To be made before the application.
 */
class Fleet
{
public:
    /** Plugs the instruments in under `directory` and returns when their ports are there. */
    Fleet(const FleetOptions &options, const QString &directory, int argc, char **argv);
    /** Pulls the plugs. */
    ~Fleet();
    Fleet(const Fleet &) = delete;
    Fleet &operator=(const Fleet &) = delete;

    bool isReady() const { return m_isReady; }
    /** Lets the streams end, once; what sentTokens() tells comes after it. */
    void fallSilent();
    /** The tokens that each instrument has sent; to be asked for once. */
    QVector<qint64> sentTokens();

    static QString portName(int instrument);

private:
    int play(const QString &directory, int argc, char **argv);

    FleetOptions m_options;
    Pipe m_toFleet;
    Pipe m_fromFleet;
    pid_t m_process = -1;
    bool m_isReady = false;
};

/** Processor time of this process, in seconds. */
double processorSeconds();

/** The most memory that this process has had, in MiB (VmHWM). */
long peakMemoryMib();
