#include "support/linkjournal.h"

#include "serial/noxserialport.h"

#include <algorithm>

LinkJournal::LinkJournal(NOXSerialPort &port, int devIndex)
    : devIndex(devIndex)
{
    connect(&port, &NOXSerialPort::readyDevMeas, this, [this](int index, double meas, quint8 ch) {
        if (index == this->devIndex)
            measurements.append({ch, meas});
    });
    connect(&port, QOverload<int, int, int, quint8>::of(&NOXSerialPort::setProgress), this,
            [this](int index, int progress, int total, quint8 address) {
                if (index == this->devIndex)
                    lines << QString("progress %1/%2 @%3").arg(progress).arg(total).arg(address);
            });
    connect(&port, &NOXSerialPort::onMeasTimeOut, this, [this](int index, bool reopened) {
        if (index == this->devIndex)
            lines << QString("watchdog %1").arg(reopened ? "reopened" : "failed");
    });
    recordResults(port);
    recordErrors(port);
}

void LinkJournal::recordResults(NOXSerialPort &port)
{
    connect(&port, QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply), this,
            [this](int index, const QByteArray &reply, quint8 address) {
                if (index != this->devIndex)
                    return;
                replies << reply;
                lines << QString("reply @%1 %2 bytes").arg(address).arg(reply.size());
            });
    connect(&port, &NOXSerialPort::resultDevQuery, this, [this](int index, bool ok) {
        if (index == this->devIndex)
            lines << (ok ? "queries done" : "queries failed");
    });
    connect(&port, &NOXSerialPort::allDevQueryComplite, this,
            [this] { lines << "all queries done"; });
    connect(&port, &NOXSerialPort::doneSendDevData, this,
            [this](int index, const noxSerialPortDataItem &item) {
                if (index == this->devIndex)
                    lines << QString("written @%1").arg(item.address);
            });
    connect(&port, &NOXSerialPort::doneSend, this, [this](int index) {
        if (index == this->devIndex)
            lines << "writes done";
    });
    connect(&port, &NOXSerialPort::allDevDataSend, this, [this] { lines << "all writes done"; });
}

void LinkJournal::recordErrors(NOXSerialPort &port)
{
    connect(&port, &NOXSerialPort::onDevQueryError, this,
            [this](int index, quint16 code, const noxSerialPortQueryItem &item) {
                if (index == this->devIndex)
                    lines << QString("query error %1 @%2").arg(code).arg(item.address);
            });
    connect(&port, &NOXSerialPort::onDevDataError, this,
            [this](int index, quint16 code, const noxSerialPortDataItem &item) {
                if (index == this->devIndex)
                    lines << QString("write error %1 @%2").arg(code).arg(item.address);
            });
    connect(&port, &NOXSerialPort::resultDevData, this, [this](int index, bool ok) {
        if (index == this->devIndex)
            lines << (ok ? "writes done, more wait" : "write failed, more wait");
    });
    connect(&port, QOverload<int, quint16, QString>::of(&NOXSerialPort::onDevError), this,
            [this](int index, quint16 code, const QString &text) {
                if (index == this->devIndex)
                    lines << QString("error %1 %2").arg(code).arg(text);
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
