#include "device/bfloat.h"

#include <QLocale>
#include <QtEndian>

#include <cstring>

namespace
{

constexpr int floatSize = sizeof(quint32);

quint32 bitsOf(float number)
{
    quint32 bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

float numberOf(quint32 bits)
{
    float number = 0.0F;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

/** Where the four bytes begin; null if the buffer does not hold them all. */
const char *bytesAt(const QByteArray &buffer, int index, int offset)
{
    const qint64 begin = offset + qint64(floatSize) * index;
    const bool isInside = begin >= 0 && begin + floatSize <= buffer.size();
    return isInside ? buffer.constData() + begin : nullptr;
}

} // namespace

QByteArray bFloat::getByte(ReverseByteMode) const
{
    QByteArray bytes(floatSize, '\0');
    if (mode == MostSignificantFirst)
        qToBigEndian(bitsOf(value), bytes.data());
    else
        qToLittleEndian(bitsOf(value), bytes.data());
    return bytes;
}

void bFloat::setFloat(const QByteArray *buf, int index, signed char offset, bool *ok,
                      ReverseByteMode)
{
    const char *const bytes = bytesAt(*buf, index, offset);
    if (bytes)
        value = numberOf(mode == MostSignificantFirst ? qFromBigEndian<quint32>(bytes)
                                                      : qFromLittleEndian<quint32>(bytes));
    if (ok)
        *ok = bytes != nullptr;
}

float bFloat::getFloat(const QByteArray *buf, int index, signed char offset, ReverseByteMode)
{
    const char *const bytes = bytesAt(*buf, index, offset);
    return bytes ? numberOf(qFromBigEndian<quint32>(bytes)) : 0.0F;
}

bool bFloat::setFloat(const QString &text)
{
    bool ok = false;
    value = str2Float(text, &ok);
    return ok;
}

float bFloat::str2Float(const QString &text, bool *ok)
{
    const QString trimmed = text.trimmed();
    bool converted = trimmed.isEmpty() || trimmed == QLatin1String("-");
    float number = 0.0F;
    if (!converted)
        number = trimmed.toFloat(&converted);
    if (!converted)
        number = QLocale(QLocale::Russian).toFloat(trimmed, &converted);
    if (ok)
        *ok = converted;
    return converted ? number : 0.0F; // an overflow leaves an infinity behind
}
