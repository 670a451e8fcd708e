#pragma once

#include <QString>

#include <functional>

/** Lets the program go on for a time. */
void waitMs(int milliseconds);

/**
 * Lets the program go on until a condition holds.
 *
 * When it does not in time, a message says what did not come, and the answer is false.
 */
bool waitUntil(const std::function<bool()> &condition, const QString &awaited, int patienceSeconds);
