#include "support/linkjournal.h"

#include <algorithm>

LinkJournal::LinkJournal(NOXSerialPort &port, int devIndex)
    : m_port(port)
    , m_devIndex(devIndex)
{
    using Port = NOXSerialPort;
    const auto all = [this](const QString &line) { return [this, line] { lines << line; }; };
    connect(&port, &Port::allDevQueryComplite, this, all("all queries done"));
    connect(&port, &Port::allDevDataSend, this, all("all writes done"));
    connect(&port, &Port::readyDevMeas, this, [this](int index, double meas, quint8 ch) {
        if (index == m_devIndex)
            measurements.append({ch, meas});
    });
    note(QOverload<int, int, int, quint8>::of(&Port::setProgress),
         [](int done, int total, quint8 address) {
             return QString("progress %1/%2 @%3").arg(done).arg(total).arg(address);
         });
    note(&Port::onMeasTimeOut, [](bool reopened) {
        return QString("watchdog %1").arg(reopened ? "reopened" : "failed");
    });
    note(QOverload<int, quint16, QString>::of(&Port::onDevError),
         [](quint16 code, const QString &text) {
             return QString("error %1 %2").arg(code).arg(text);
         });
    noteExchanges();
}

void LinkJournal::noteExchanges()
{
    using Port = NOXSerialPort;
    note(QOverload<int, QByteArray, quint8>::of(&Port::readyDevReply),
         [this](const QByteArray &reply, quint8 address) {
             replies << reply;
             return QString("reply @%1 %2 bytes").arg(address).arg(reply.size());
         });
    note(&Port::resultDevQuery, [](bool ok) { return ok ? "queries done" : "queries failed"; });
    note(&Port::onDevQueryError, [](quint16 code, const noxSerialPortQueryItem &item) {
        return QString("query error %1 @%2").arg(code).arg(item.address);
    });
    note(&Port::doneSendDevData, [](const noxSerialPortDataItem &item) {
        return QString("written @%1").arg(item.address);
    });
    note(&Port::doneSend, [] { return "writes done"; });
    note(&Port::onDevDataError, [](quint16 code, const noxSerialPortDataItem &item) {
        return QString("write error %1 @%2").arg(code).arg(item.address);
    });
    note(&Port::resultDevData,
         [](bool ok) { return ok ? "writes done, more wait" : "write failed, more wait"; });
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
