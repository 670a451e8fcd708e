#pragma once

#include "simulator/faultplan.h"

#include <QByteArray>

#include <random>

/** Spoils bytes on their way to the host, as the chance part of a fault plan wants it. */
class LineFaults
{
public:
    /** A plan with the same seed spoils the same bytes. */
    explicit LineFaults(const FaultPlan &faults = {});

    /** `bytes` less those lost, with those garbled altered. */
    QByteArray passed(const QByteArray &bytes);
    /** A token of the stream, spoiled when its turn has come. */
    QByteArray noisyToken(const QByteArray &token);

private:
    bool strikes(double probability);
    int chosen(int lowest, int highest);
    QByteArray foreignBytes(int count);

    FaultPlan m_faults;
    std::mt19937 m_chance;
};
