#pragma once

#include <QByteArray>

#include <memory>

/** The bytes of an array that a function has given away; the array itself is released. */
inline QByteArray taken(QByteArray *given)
{
    return *std::unique_ptr<QByteArray>(given);
}
