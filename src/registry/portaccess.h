#pragma once

#include <QString>
#include <QVector>

struct SerialPortEntry;

/** True when a port can be connected: no program has it open, and the user may open it. */
bool isConnectable(const SerialPortEntry &port);

/**
 * What is said of those among `ports` that the user may not open: which they are, and the group
 * that he has to join, where one may, a line for each group. Empty when he may open all of them.
 */
QString deniedPortsText(const QVector<SerialPortEntry> &ports);
