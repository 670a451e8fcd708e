#pragma once

#include <QByteArray>
#include <QString>

/**
 * Texts of instruments and files, which are in the code page Windows-1251: one byte a character.
 *
 * All 256 bytes survive decoding and encoding (by Qt's ICU codec). A character that the page does
 * not have becomes a question mark.
 */

QByteArray toWindows1251(const QString &text);
QString fromWindows1251(const QByteArray &bytes);

/** The text cut, or padded with zeros, to `size` bytes. */
QByteArray toFixedText(const QString &text, int size);

/** The text of `size` bytes at `offset`, which must exist, up to the first zero; without blanks at
 *  its ends. */
QString fromFixedText(const QByteArray &bytes, int offset, int size);

/** A length byte and the text, cut or padded with zeros to `capacity` bytes: 1 + `capacity` in all.
 */
QByteArray toCountedText(const QString &text, int capacity);

/** The text of a length byte at `offset` and at most `capacity` bytes after it, which must exist.
 */
QString fromCountedText(const QByteArray &bytes, int offset, int capacity);
