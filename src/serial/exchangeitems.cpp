#include "serial/exchangeitems.h"

bool operator==(const noxSerialPortQueryItem &left, const noxSerialPortQueryItem &right)
{
    return left.address == right.address && left.size == right.size;
}

bool operator==(const noxSerialPortDataItem &left, const noxSerialPortDataItem &right)
{
    return left.address == right.address && left.data == right.data;
}

void registerExchangeItems()
{
    qRegisterMetaType<noxSerialPortQueryItem>("noxSerialPortQueryItem");
    qRegisterMetaType<noxSerialPortDataItem>("noxSerialPortDataItem");
    qRegisterMetaType<noxQueryMode>("noxQueryMode");
    qRegisterMetaType<QByteArray *>("QByteArray*");
}
