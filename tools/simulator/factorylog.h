#pragma once

#include <QByteArray>

/** What the log of an instrument leaving the factory holds, in records of 8 bytes: a start record
 *  of 17.05.2023 09:30:00, then `marks` time marks 10 s apart, each followed by one temperature of
 *  every channel; empty when `marks` is 0. */
QByteArray factoryLog(int channels, int marks);
