#include "device/windows1251.h"

#include <QTextCodec>

#include <algorithm>

namespace
{

/**
 * The code page as tables for both directions.
 *
 * They are Qt's own, which for each text looks its converter up anew: that takes longer than the
 * few characters of a name.
 */
class CodePage
{
public:
    CodePage()
        : m_codec(QTextCodec::codecForName("Windows-1251"))
    {
        Q_ASSERT(m_codec);
        QByteArray bytes;
        for (int byte = 0; byte <= 0xFF; ++byte)
            bytes += char(byte);
        m_characters = m_codec->toUnicode(bytes);
        m_bytes.fill('\0',
                     std::max_element(m_characters.begin(), m_characters.end())->unicode() + 1);
        for (int byte = 0; byte <= 0xFF; ++byte)
            m_bytes[int(m_characters.at(byte).unicode())] = char(byte);
    }

    QByteArray encoded(const QString &text) const
    {
        QByteArray bytes(text.size(), Qt::Uninitialized);
        for (int i = 0; i < text.size(); ++i) {
            const int character = text.at(i).unicode();
            const char byte = character < m_bytes.size() ? m_bytes.at(character) : '\0';
            if (byte == '\0' && character != 0)
                return m_codec->fromUnicode(text); // it knows what to put for such a character
            bytes[i] = byte;
        }
        return bytes;
    }

    QString decoded(const QByteArray &bytes) const
    {
        QString text(bytes.size(), Qt::Uninitialized);
        std::transform(bytes.begin(), bytes.end(), text.begin(),
                       [characters = m_characters.constData()](char byte) {
                           return characters[quint8(byte)];
                       });
        return text;
    }

private:
    QTextCodec *m_codec;
    QString m_characters; ///< by byte
    QByteArray m_bytes;   ///< by character; 0 where it has none
};

const CodePage &codePage()
{
    static const CodePage page;
    return page;
}

} // namespace

QByteArray toWindows1251(const QString &text)
{
    return codePage().encoded(text);
}

QString fromWindows1251(const QByteArray &bytes)
{
    return codePage().decoded(bytes);
}

QByteArray toFixedText(const QString &text, int size)
{
    return toWindows1251(text).leftJustified(size, '\0', true);
}

QString fromFixedText(const QByteArray &bytes, int offset, int size)
{
    return fromWindows1251(bytes.mid(offset, size).split('\0').first()).trimmed();
}

QByteArray toCountedText(const QString &text, int capacity)
{
    const QByteArray characters = toWindows1251(text).left(capacity);
    return char(characters.size()) + characters.leftJustified(capacity, '\0');
}

QString fromCountedText(const QByteArray &bytes, int offset, int capacity)
{
    const int length = qMin(int(quint8(bytes.at(offset))), capacity);
    return fromWindows1251(bytes.mid(offset + 1, length));
}
