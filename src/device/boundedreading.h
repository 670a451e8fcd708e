#pragma once

#include <QByteArray>

class QIODevice;

/** What the device still holds; nothing if that is more than so many bytes, of which one more is
 *  read then, or if the device fails. */
QByteArray readWhole(QIODevice &device, int mostBytes);
