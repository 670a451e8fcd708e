#include "support/linkjournal.h"

#include "serial/noxserialport.h"

#include <algorithm>

LinkJournal::LinkJournal(NOXSerialPort &port, int devIndex)
    : devIndex(devIndex)
{
    using Port = NOXSerialPort;
    connect(&port, &Port::readyDevMeas, this, [this](int index, double meas, quint8 ch) {
        if (index == this->devIndex)
            measurements.append({ch, meas});
    });
    connect(&port, QOverload<int, int, int, quint8>::of(&Port::setProgress), this,
            [this](int index, int progress, int total, quint8 address) {
                note(index, QString("progress %1/%2 @%3").arg(progress).arg(total).arg(address));
            });
    connect(&port, &Port::onMeasTimeOut, this, [this](int index, bool reopened) {
        note(index, QString("watchdog %1").arg(reopened ? "reopened" : "failed"));
    });
    recordReads(port);
    recordWrites(port);
    connect(&port, QOverload<int, quint16, QString>::of(&Port::onDevError), this,
            [this](int index, quint16 code, const QString &text) {
                note(index, QString("error %1 %2").arg(code).arg(text));
            });
}

void LinkJournal::note(int index, const QString &line)
{
    if (index == devIndex)
        lines << line;
}

void LinkJournal::recordReads(NOXSerialPort &port)
{
    using Port = NOXSerialPort;
    connect(&port, QOverload<int, QByteArray, quint8>::of(&Port::readyDevReply), this,
            [this](int index, const QByteArray &reply, quint8 address) {
                if (index == this->devIndex)
                    replies << reply;
                note(index, QString("reply @%1 %2 bytes").arg(address).arg(reply.size()));
            });
    connect(&port, &Port::resultDevQuery, this,
            [this](int index, bool ok) { note(index, ok ? "queries done" : "queries failed"); });
    connect(&port, &Port::allDevQueryComplite, this, [this] { lines << "all queries done"; });
    connect(&port, &Port::onDevQueryError, this,
            [this](int index, quint16 code, const noxSerialPortQueryItem &item) {
                note(index, QString("query error %1 @%2").arg(code).arg(item.address));
            });
}

void LinkJournal::recordWrites(NOXSerialPort &port)
{
    using Port = NOXSerialPort;
    connect(&port, &Port::doneSendDevData, this,
            [this](int index, const noxSerialPortDataItem &item) {
                note(index, QString("written @%1").arg(item.address));
            });
    connect(&port, &Port::doneSend, this, [this](int index) { note(index, "writes done"); });
    connect(&port, &Port::allDevDataSend, this, [this] { lines << "all writes done"; });
    connect(&port, &Port::onDevDataError, this,
            [this](int index, quint16 code, const noxSerialPortDataItem &item) {
                note(index, QString("write error %1 @%2").arg(code).arg(item.address));
            });
    connect(&port, &Port::resultDevData, this, [this](int index, bool ok) {
        note(index, ok ? "writes done, more wait" : "write failed, more wait");
    });
}

QStringList LinkJournal::linesOf(const QString &beginning) const
{
    QStringList found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
                 [&beginning](const QString &line) { return line.startsWith(beginning); });
    return found;
}

bool LinkJournal::hasResult() const
{
    return std::any_of(lines.begin(), lines.end(), [](const QString &line) {
        return line.startsWith("reply") || line.startsWith("written") ||
               line.startsWith("query error") || line.startsWith("write error");
    });
}

QVector<ChannelValue> LinkJournal::foreignMeasurements() const
{
    QVector<ChannelValue> foreign;
    std::copy_if(measurements.begin(), measurements.end(), std::back_inserter(foreign),
                 [](const ChannelValue &pair) { return !isSteadyMeasurement(pair); });
    return foreign;
}

void LinkJournal::clear()
{
    lines.clear();
    replies.clear();
    measurements.clear();
}
