#pragma once

#include "serial/noxserialport.h"
#include "support/instrumentbench.h"

#include <QObject>
#include <QRegularExpression>
#include <QStringList>

/**
 * What a port multiplexer says about one device, in order, each event a line of text such as
 * "progress 4/72 @3", "reply @3 72 bytes" or "error 110 Unknown error"; the stream is kept apart.
 */
class LinkJournal : public QObject
{
    Q_OBJECT
public:
    LinkJournal(NOXSerialPort &port, int devIndex);

    /** The lines that begin with a pattern. */
    QStringList linesOf(const QString &beginning) const
    {
        return lines.filter(QRegularExpression('^' + beginning));
    }
    /** The measurements that a steady instrument never sent. */
    QVector<ChannelValue> foreignMeasurements() const;
    void clear();

    QStringList lines;
    QVector<QByteArray> replies;
    QVector<ChannelValue> measurements;

private:
    /** Notes a signal of the device by the text that its arguments give. */
    template<typename... Arguments, typename Text>
    void note(void (NOXSerialPort::*signal)(int, Arguments...), Text textOf)
    {
        connect(&m_port, signal, this, [this, textOf](int index, Arguments... arguments) {
            if (index == m_devIndex)
                lines << textOf(arguments...);
        });
    }
    void noteExchanges();

    NOXSerialPort &m_port;
    int m_devIndex;
};
