#include "serial/noxserialportthread.h"

#include "serial/portcatalog.h"

namespace
{

constexpr int lostPortPeriodMs = 100;

/** Sets a flag for the length of a scope. */
class FlagScope
{
public:
    explicit FlagScope(bool &flag)
        : flag(flag)
    {
        flag = true;
    }
    ~FlagScope() { flag = false; }
    FlagScope(const FlagScope &) = delete;
    FlagScope &operator=(const FlagScope &) = delete;

private:
    bool &flag;
};

} // namespace

noxSerialPortThread::noxSerialPortThread(int devIndex, const QString &portName, char devType,
                                         int baudRate, quint8 measTimeout)
    : m_baudRate(baudRate)
    , m_devIndex(devIndex)
    , m_devType(devType)
    , m_measTimeout(measTimeout)
    , m_portName(portName)
{
    // A QThread lives where it was created; only here its slots and single-shot callbacks come to
    // run in the thread that it starts, where the port is.
    moveToThread(this);
}

noxSerialPortThread::~noxSerialPortThread()
{
    requestStop();
    wait();
}

void noxSerialPortThread::requestStop()
{
    m_running = false;
    quit();
}

void noxSerialPortThread::run()
{
    m_port = std::make_unique<QSerialPort>();
    m_dialogue = std::make_unique<ByteDialogue>(*m_port, m_running, m_timing);
    if (reConnect()) {
        m_running = true;

        m_watchdogTimer = std::make_unique<QTimer>();
        m_watchdogTimer->setSingleShot(true);
        m_watchdogTimer->setInterval(m_measTimeout * 1000);
        connect(m_watchdogTimer.get(), &QTimer::timeout, this,
                &noxSerialPortThread::onTimerReconnect);
        m_watchdogTimer->start();

        m_lostPortTimer = std::make_unique<QTimer>();
        m_lostPortTimer->setInterval(lostPortPeriodMs);
        connect(m_lostPortTimer.get(), &QTimer::timeout, this,
                &noxSerialPortThread::lookForLostPort);

        exec();
    }
    m_running = false;
    m_watchdogTimer.reset();
    m_lostPortTimer.reset();
    m_dialogue.reset();
    m_port.reset();
}

void noxSerialPortThread::sendQuery(int devIndex, noxSerialPortQueryItem newQuery)
{
    assertWorkerThread();
    if (devIndex == m_devIndex)
        accept(m_query, newQuery, &noxSerialPortThread::sendNextQuery);
}

void noxSerialPortThread::sendData(int devIndex, noxSerialPortDataItem newData)
{
    assertWorkerThread();
    if (devIndex == m_devIndex)
        accept(m_data, newData, &noxSerialPortThread::sendNextData);
}

/** Takes an exchange on, unless one of its kind is in progress. */
template<typename Item>
void noxSerialPortThread::accept(Current<Item> &current, const Item &item, Start start)
{
    if (!m_running || current.item.address != noBlockAddress)
        return;
    m_watchdogTimer->stop();
    current.item = item;
    current.attempts = 0;
    scheduleStart(m_timing.queueDelay, start);
}

void noxSerialPortThread::setDevType(int devIndex, char newDevType)
{
    assertWorkerThread();
    if (devIndex == m_devIndex)
        m_devType = newDevType;
}

void noxSerialPortThread::setMeasTimeout(int devIndex, quint8 sec)
{
    assertWorkerThread();
    if (devIndex != m_devIndex)
        return;
    const bool wasRunning = m_watchdogTimer->isActive();
    m_watchdogTimer->stop();
    m_measTimeout = sec;
    m_watchdogTimer->setInterval(sec * 1000);
    if (wasRunning)
        m_watchdogTimer->start();
}

void noxSerialPortThread::setDelayTime(int devIndex, quint16 init, quint16 queue, quint16 attempt)
{
    assertWorkerThread();
    if (devIndex != m_devIndex)
        return;
    m_timing.initDelay = init;
    m_timing.queueDelay = queue;
    m_timing.attemptDelay = attempt;
}

void noxSerialPortThread::blockStatusEvent(int devIndex, bool b)
{
    assertWorkerThread();
    if (devIndex != m_devIndex || m_port->signalsBlocked() == b)
        return;
    m_port->blockSignals(b);
    if (b) {
        m_parser.dropOpenToken();
        // a port that is lost while it cannot say so would keep the thread spinning
        m_lostPortTimer->start();
    } else {
        m_lostPortTimer->stop();
        // What came meanwhile waits in the port, and only the next byte would announce it. It is
        // read from a timer: reading in a queued slot gives spurious errors under glib.
        QTimer::singleShot(0, this, &noxSerialPortThread::readyRead);
    }
}

void noxSerialPortThread::rm()
{
    assertWorkerThread();
    requestStop();
}

void noxSerialPortThread::readyRead()
{
    assertWorkerThread();
    // the waits of an exchange announce its bytes here too; they are not the stream's
    if (m_exchanging || m_port->signalsBlocked() || m_port->bytesAvailable() == 0)
        return;
    m_watchdogTimer->stop();
    const bool tokensCame =
        m_parser.feed(m_port->readAll(), [this](const StreamToken &token) { publish(token); });
    if (tokensCame)
        m_watchdogTimer->start();
}

void noxSerialPortThread::publish(const StreamToken &token)
{
    if (!m_running)
        return;
    emit readySource(token.source);
    if (token.kind == StreamToken::Status)
        emit readyStatus(token.status);
    else if (token.kind == StreamToken::Measurement)
        emit readyMeas(token.value, token.ch, token.dim);
}

void noxSerialPortThread::sendNextQuery()
{
    assertWorkerThread();
    if (m_query.item.size == 0 || !mayGoOn())
        return;
    const FlagScope scope(m_exchanging);
    if (m_query.item.rec)
        sendNextQueryRec();
    else if (m_query.item.word)
        sendNextQueryWord();
    else
        sendNextQueryData();
}

void noxSerialPortThread::sendNextQueryData()
{
    QByteArray reply;
    showProgress(m_query.item.showPr, -1, 0, m_query.item.address);
    const LinkResult result =
        m_dialogue->readBlock(m_query.item.address, m_query.item.size, m_devType, &reply,
                              progressOf(m_query.item.showPr, m_query.item.address));
    finishQuery(result, ExchangeKind::BlockRead, reply);
}

void noxSerialPortThread::sendNextQueryRec()
{
    QByteArray reply;
    showProgress(m_query.item.showPr, -1, 0, m_query.item.address);
    const LinkResult result =
        m_dialogue->readRecords(m_query.item.address, m_query.item.size, m_devType, &reply,
                                progressOf(m_query.item.showPr, m_query.item.address));
    finishQuery(result, ExchangeKind::RecordRead, reply);
}

void noxSerialPortThread::sendNextQueryWord()
{
    QByteArray reply;
    const LinkResult result = m_dialogue->readWord(m_query.item.address, &reply);
    finishQuery(result, ExchangeKind::WordRead, reply);
}

void noxSerialPortThread::sendNextData()
{
    assertWorkerThread();
    if (m_data.item.data.isEmpty() || !mayGoOn())
        return;
    const FlagScope scope(m_exchanging);
    if (m_data.item.word)
        sendNextDataWord();
    else
        sendNextDataSync();
}

void noxSerialPortThread::sendNextDataSync()
{
    showProgress(m_data.item.showPr, -1, 0, m_data.item.address);
    finishData(m_dialogue->writeBlock(m_data.item.address, m_data.item.data, m_devType,
                                      progressOf(m_data.item.showPr, m_data.item.address)));
}

void noxSerialPortThread::sendNextDataWord()
{
    finishData(m_dialogue->writeWord(m_data.item.address, m_data.item.data));
}

void noxSerialPortThread::finishQuery(LinkResult result, ExchangeKind kind, const QByteArray &reply)
{
    const auto announce = [&](const noxSerialPortQueryItem &query) {
        if (result == LinkResult::Done)
            emit readyQuery(new QByteArray(reply), query.address);
        else if (deliversEmptyReply(kind, query.qMode))
            emit readyQuery(new QByteArray, query.address);
        else
            emit onSendQueryError(quint16(result), query);
    };
    settle(m_query, result, kind, &noxSerialPortThread::sendNextQuery, announce);
}

void noxSerialPortThread::finishData(LinkResult result)
{
    const auto announce = [&](const noxSerialPortDataItem &data) {
        if (result == LinkResult::Done)
            emit doneSend();
        else
            emit onSendDataError(quint16(result), data);
    };
    settle(m_data, result, ExchangeKind::Write, &noxSerialPortThread::sendNextData, announce);
}

/** What follows an attempt: nothing on a stop, another one, or the result, which is announced. */
template<typename Item, typename Announce>
void noxSerialPortThread::settle(Current<Item> &current, LinkResult result, ExchangeKind kind,
                                 Start start, Announce announce)
{
    if (!mayGoOn())
        return;
    const Item item = current.item;
    const bool done = result == LinkResult::Done;
    showProgress(item.showPr, -1, 0, item.address);
    if (!done) {
        const RetryStep step = nextRetryStep(kind, item.qMode, current.attempts);
        current.attempts = step.attempts;
        if (step.action != RetryStep::GiveUp) {
            scheduleRetry(step.action, start);
            return;
        }
        showProgress(item.showPr, 0, 0, item.address);
    }
    announce(item);
    current.item.address = noBlockAddress;
    if (done)
        showProgress(item.showPr, 0, 0, noBlockAddress);
    // after a failed write the watchdog starts again with the stream
    if (done || kind != ExchangeKind::Write)
        m_watchdogTimer->start();
    endExchange(done ? StreamStart::Anew : StreamStart::Anywhere);
}

/** Leaves the line empty and tells the parser where in the stream the next byte will stand. */
void noxSerialPortThread::endExchange(StreamStart start)
{
    // After a complete dialogue the instrument begins its stream anew. After a failed one, or
    // when the stream was quicker than the clearing, a token has been cut.
    const bool nothingLost = m_dialogue->clear();
    if (start == StreamStart::Anew && nothingLost)
        m_parser.restart();
    else
        m_parser.skipToNextToken();
}

/**
 * False when an exchange is to be abandoned: on a stop request, which leaves the line empty, or on
 * a lost port, which is reported here because its own signal may have been held back.
 */
bool noxSerialPortThread::mayGoOn()
{
    if (m_running)
        lookForLostPort();
    if (!m_running)
        m_dialogue->clear();
    return m_running;
}

void noxSerialPortThread::lookForLostPort()
{
    if (m_port->isOpen())
        onPortError(m_port->error());
}

void noxSerialPortThread::onPortError(QSerialPort::SerialPortError error)
{
    assertWorkerThread();
    if (!isFatalPortError(error)) {
        if (error != QSerialPort::NoError)
            m_port->clearError();
        return;
    }
    // a lost port raises its error again and again until it is closed: report it once
    if (!m_running.exchange(false))
        return;
    emit onError(quint16(portErrorBase - error));
    quit();
}

void noxSerialPortThread::onTimerReconnect()
{
    assertWorkerThread();
    const bool reopened = reConnect();
    emit onMeasTimeout(reopened);
    if (!reopened)
        quit();
}

bool noxSerialPortThread::reConnect()
{
    if (m_portName.isEmpty()) {
        emit onError(portNameEmptyCode);
        return false;
    }
    // closing a port that is closed raises an error of its own
    if (m_port->isOpen())
        m_port->close();
    m_port->disconnect();
    m_parser.dropOpenToken();
    // asked anew each time: an instrument that comes back may stand behind another device
    m_port->setPortName(PortCatalog::current().find(m_portName).device);
    if (!m_port->open(QIODevice::ReadWrite)) {
        emit onError(portOpenFailedCode);
        return false;
    }
    m_port->setBaudRate(m_baudRate, QSerialPort::AllDirections);
    m_port->setDataBits(QSerialPort::Data8);
    m_port->setParity(QSerialPort::NoParity);
    m_port->setStopBits(QSerialPort::OneStop);
    m_port->setFlowControl(QSerialPort::NoFlowControl);
    connect(m_port.get(), &QSerialPort::readyRead, this, &noxSerialPortThread::readyRead);
    connect(m_port.get(), &QSerialPort::errorOccurred, this, &noxSerialPortThread::onPortError);
    return true;
}

void noxSerialPortThread::showProgress(bool show, int progress, int maxProgress, quint8 address)
{
    if (show)
        emit setProgress(progress, maxProgress, address);
}

ByteDialogue::Progress noxSerialPortThread::progressOf(bool show, quint8 address)
{
    return [this, show, address](int done, int total) { showProgress(show, done, total, address); };
}

void noxSerialPortThread::scheduleStart(int baseDelayMs, Start start)
{
    // a coarse timer, Qt's choice from 2 s on, would fire up to a twentieth too early
    QTimer::singleShot(startDelay(m_timing, baseDelayMs), Qt::PreciseTimer, this, start);
}

void noxSerialPortThread::scheduleRetry(RetryStep::Action action, Start start)
{
    switch (action) {
    case RetryStep::RetryQuickly:
        scheduleStart(0, start);
        break;
    case RetryStep::Retry:
        scheduleStart(m_timing.attemptDelay, start);
        break;
    case RetryStep::ReopenAndRetry:
        // when it cannot be reopened the retry ends here; the error has been reported
        if (reConnect())
            scheduleStart(2 * m_timing.attemptDelay, start);
        break;
    case RetryStep::GiveUp:
        break;
    }
}
