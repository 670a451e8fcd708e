#pragma once

#include <QByteArray>
#include <QHash>

#include <cstdlib>

/** Ends the run, so that the input is kept, unless the condition holds. */
inline void require(bool condition)
{
    if (!condition)
        std::abort();
}

/** Takes the input apart from its front; beyond its end there are zeros and empty arrays. */
class FuzzInput
{
public:
    FuzzInput(const quint8 *data, size_t size)
        : m_bytes(QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size)))
    {
    }

    /** Whether the input is one of those, one in so many, to which what takes long is done: one
     * that has led to something new has enough likes. */
    bool isSample(uint oneIn) const { return qHash(m_bytes) % oneIn == 0; }

    bool atEnd() const { return m_position == m_bytes.size(); }
    quint8 byte() { return atEnd() ? quint8(0) : quint8(m_bytes.at(m_position++)); }
    /** Two bytes, the least significant first. */
    int word()
    {
        const int low = byte();
        return low | byte() << 8;
    }
    QByteArray bytes(int count)
    {
        const QByteArray taken = m_bytes.mid(m_position, count);
        m_position += taken.size();
        return taken;
    }
    QByteArray rest() { return bytes(m_bytes.size()); }

private:
    QByteArray m_bytes;
    int m_position = 0;
};
