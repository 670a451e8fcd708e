#include "device/windows1251.h"

#include <QTextCodec>

namespace
{

QTextCodec &codec()
{
    static QTextCodec *const windows1251 = QTextCodec::codecForName("Windows-1251");
    Q_ASSERT(windows1251);
    return *windows1251;
}

} // namespace

QByteArray toWindows1251(const QString &text)
{
    return codec().fromUnicode(text);
}

QString fromWindows1251(const QByteArray &bytes)
{
    return codec().toUnicode(bytes);
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
