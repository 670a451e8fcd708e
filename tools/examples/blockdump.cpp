#include "examples/blockdump.h"

#include "device/bfloat.h"
#include "device/windows1251.h"

namespace
{

constexpr int bytesInLine = 8;
constexpr int bytesWidth = 3 * bytesInLine - 1;
constexpr int offsetWidth = 4;

} // namespace

BlockDump::BlockDump(const QByteArray &block)
    : m_block(block)
{
}

void BlockDump::addLine(const QString &bytes, const QString &meaning)
{
    const QString line = QStringLiteral("%1  %2  %3")
                             .arg(m_offset, offsetWidth)
                             .arg(bytes, -bytesWidth)
                             .arg(meaning);
    m_lines << (meaning.isEmpty() ? line.trimmed().rightJustified(offsetWidth) : line);
}

void BlockDump::show(int count, const QString &meaning)
{
    const int end = m_offset + count;
    Q_ASSERT(end <= m_block.size());
    QString text = meaning;
    while (m_offset < end) {
        const int shown = qMin(bytesInLine, end - m_offset);
        addLine(QString::fromLatin1(m_block.mid(m_offset, shown).toHex(' ')),
                std::exchange(text, QStringLiteral("...")));
        m_offset += shown;
    }
}

void BlockDump::skip(int count, const QString &meaning)
{
    if (count == 0)
        return;
    addLine(QStringLiteral("... (%1 bytes)").arg(count), meaning);
    m_offset += count;
}

void BlockDump::showNumber(const QString &name)
{
    const float number = bFloat::getFloat(&m_block, m_offset / 4);
    show(4, name + QStringLiteral(" = ") + QString::number(double(number), 'g', 7));
}

void BlockDump::showText(const QString &name, int capacity)
{
    const QString text = fromCountedText(m_block, m_offset, capacity);
    show(1, name + QStringLiteral(": length"));
    show(text.size(), QLatin1Char('"') + text + QLatin1Char('"'));
    skip(capacity - text.size(), QStringLiteral("zeros"));
}

QStringList BlockDump::lines() const
{
    Q_ASSERT(m_offset == m_block.size());
    return m_lines;
}
