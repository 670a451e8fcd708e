#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/**
 * A block as annotated lines: offset, bytes, meaning. It is gone through from its beginning, field
 * by field, to its end.
 */
class BlockDump
{
public:
    explicit BlockDump(const QByteArray &block);

    /** The next bytes and what they mean. Long fields take several lines. */
    void show(int count, const QString &meaning);
    /** The next bytes, not shown. */
    void skip(int count, const QString &meaning);
    /** The next four bytes as a number, most significant byte first. */
    void showNumber(const QString &name);
    /** The next length byte and the text that it counts, in a field of `capacity` bytes. */
    void showText(const QString &name, int capacity);

    /** Everything so far; the whole block must have been gone through. */
    QStringList lines() const;

private:
    void addLine(const QString &bytes, const QString &meaning);

    QByteArray m_block;
    int m_offset = 0;
    QStringList m_lines;
};
