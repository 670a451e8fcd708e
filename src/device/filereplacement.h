#pragma once

class QByteArray;
class QString;

/** Writes a file that takes the place of an existing one only when all of it is on the disk. False,
 *  and the existing one unharmed, when that fails, as it always does in a folder that cannot be
 * written to. */
bool replaceFile(const QString &fileName, const QByteArray &content);
