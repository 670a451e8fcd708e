#include "device/bword.h"

#include <QtEndian>

int bWord::getWord(const QByteArray *buf, int index, signed char, ReverseByteMode)
{
    const qint64 begin = qint64(sizeof(quint32)) * index;
    if (begin < 0 || begin + qint64(sizeof(quint32)) > buf->size())
        return 0;
    return int(qFromLittleEndian<quint32>(buf->constData() + begin));
}
