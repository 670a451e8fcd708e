#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QString>
#include <QVector>

/** One measurement that an instrument has stored. */
struct LoggerItem {
    float time = 0;  ///< the time mark in force, seconds from the start of the recording
    float value = 0; ///< in the unit `dim`
    QString dim;     ///< unit text
};

/** What an instrument's logger holds. */
struct LoggerReadout {
    QMap<quint8, QVector<LoggerItem>> items; ///< by channel, from 0, in the order of storing
    QDateTime start;                         ///< of the recording, local time
};

/**
 * Reads logger records of 8 bytes, of which the first gives the start.
 *
 * False, and nothing read, when the records are not whole, when the start is no date and time, and
 * when any record is of an unknown type or of a channel not below `channelCount`.
 */
bool decodeLoggerRecords(const QByteArray &records, quint8 channelCount, LoggerReadout &readout);
