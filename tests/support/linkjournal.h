#pragma once

#include "support/instrumentbench.h"

#include <QObject>
#include <QStringList>

class NOXSerialPort;

/**
 * What a port multiplexer says about one device, in order, each event a line of text such as
 * "progress 4/72 @3", "reply @3 72 bytes" or "error 110 Unknown error"; the stream is kept apart.
 */
class LinkJournal : public QObject
{
    Q_OBJECT
public:
    LinkJournal(NOXSerialPort &port, int devIndex);

    /** The lines that begin with a text. */
    QStringList linesOf(const QString &beginning) const;
    /** Whether an exchange has ended, well or not. */
    bool hasResult() const;
    /** The measurements that a steady instrument never sent. */
    QVector<ChannelValue> foreignMeasurements() const;
    void clear();

    QStringList lines;
    QVector<QByteArray> replies;
    QVector<ChannelValue> measurements;

private:
    void recordReads(NOXSerialPort &port);
    void recordWrites(NOXSerialPort &port);
    void note(int index, const QString &line);

    int devIndex;
};
