#pragma once

#include <QByteArray>

#include <memory>

/** What an array held that a function gave away. */
inline QByteArray bytesOf(QByteArray *given)
{
    return *std::unique_ptr<QByteArray>(given);
}
