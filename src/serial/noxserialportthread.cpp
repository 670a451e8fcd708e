#include "serial/noxserialportthread.h"

#include "serial/portcatalog.h"

namespace
{

constexpr int lostPortPeriodMs = 100;
constexpr quint8 noAddress = noBlockAddress;

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
    : baudRate(baudRate)
    , devIndex(devIndex)
    , devType(devType)
    , measTimeout(measTimeout)
    , portName(portName)
{
    query.address = noAddress;
    data.address = noAddress;
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
    running = false;
    quit();
}

void noxSerialPortThread::run()
{
    port = std::make_unique<QSerialPort>();
    dialogue = std::make_unique<ByteDialogue>(*port, running, timing);
    if (reConnect()) {
        running = true;

        measTimer = std::make_unique<QTimer>();
        measTimer->setSingleShot(true);
        measTimer->setInterval(measTimeout * 1000);
        connect(measTimer.get(), &QTimer::timeout, this, &noxSerialPortThread::onTimerReconnect);
        measTimer->start();

        lostPortTimer = std::make_unique<QTimer>();
        lostPortTimer->setInterval(lostPortPeriodMs);
        connect(lostPortTimer.get(), &QTimer::timeout, this, &noxSerialPortThread::lookForLostPort);

        exec();
    }
    running = false;
    measTimer.reset();
    lostPortTimer.reset();
    dialogue.reset();
    port.reset();
}

void noxSerialPortThread::sendQuery(int devIndex, noxSerialPortQueryItem newQuery)
{
    assertWorkerThread();
    if (devIndex != this->devIndex || !running || query.address != noAddress)
        return;
    measTimer->stop();
    query = newQuery;
    queryAttempt = 0;
    scheduleStart(timing.queueDelay, &noxSerialPortThread::sendNextQuery);
}

void noxSerialPortThread::sendData(int devIndex, noxSerialPortDataItem newData)
{
    assertWorkerThread();
    if (devIndex != this->devIndex || !running || data.address != noAddress)
        return;
    measTimer->stop();
    data = newData;
    dataAttempt = 0;
    scheduleStart(timing.queueDelay, &noxSerialPortThread::sendNextData);
}

void noxSerialPortThread::setDevType(int devIndex, char newDevType)
{
    assertWorkerThread();
    if (devIndex == this->devIndex)
        devType = newDevType;
}

void noxSerialPortThread::setMeasTimeout(int devIndex, quint8 sec)
{
    assertWorkerThread();
    if (devIndex != this->devIndex)
        return;
    const bool wasRunning = measTimer->isActive();
    measTimer->stop();
    measTimeout = sec;
    measTimer->setInterval(sec * 1000);
    if (wasRunning)
        measTimer->start();
}

void noxSerialPortThread::setDelayTime(int devIndex, quint16 init, quint16 queue, quint16 attempt)
{
    assertWorkerThread();
    if (devIndex != this->devIndex)
        return;
    timing.initDelay = init;
    timing.queueDelay = queue;
    timing.attemptDelay = attempt;
}

void noxSerialPortThread::blockStatusEvent(int devIndex, bool b)
{
    assertWorkerThread();
    if (devIndex != this->devIndex || port->signalsBlocked() == b)
        return;
    port->blockSignals(b);
    if (b) {
        parser.dropOpenToken();
        // a port that is lost while it cannot say so would keep the thread spinning
        lostPortTimer->start();
    } else {
        lostPortTimer->stop();
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
    if (exchanging || port->signalsBlocked() || port->bytesAvailable() == 0)
        return;
    measTimer->stop();
    const bool tokensCame =
        parser.feed(port->readAll(), [this](const StreamToken &token) { publish(token); });
    if (tokensCame)
        measTimer->start();
}

void noxSerialPortThread::publish(const StreamToken &token)
{
    if (!running)
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
    if (query.size == 0 || !mayGoOn())
        return;
    const FlagScope scope(exchanging);
    if (query.rec)
        sendNextQueryRec();
    else if (query.word)
        sendNextQueryWord();
    else
        sendNextQueryData();
}

void noxSerialPortThread::sendNextQueryData()
{
    QByteArray reply;
    showProgress(query.showPr, -1, 0, query.address);
    const LinkResult result = dialogue->readBlock(query.address, query.size, devType, &reply,
                                                  progressOf(query.showPr, query.address));
    finishQuery(result, ExchangeKind::BlockRead, reply);
}

void noxSerialPortThread::sendNextQueryRec()
{
    QByteArray reply;
    showProgress(query.showPr, -1, 0, query.address);
    const LinkResult result = dialogue->readRecords(query.address, query.size, devType, &reply,
                                                    progressOf(query.showPr, query.address));
    finishQuery(result, ExchangeKind::RecordRead, reply);
}

void noxSerialPortThread::sendNextQueryWord()
{
    QByteArray reply;
    const LinkResult result = dialogue->readWord(query.address, &reply);
    finishQuery(result, ExchangeKind::WordRead, reply);
}

void noxSerialPortThread::sendNextData()
{
    assertWorkerThread();
    if (data.data.isEmpty() || !mayGoOn())
        return;
    const FlagScope scope(exchanging);
    if (data.word)
        sendNextDataWord();
    else
        sendNextDataSync();
}

void noxSerialPortThread::sendNextDataSync()
{
    showProgress(data.showPr, -1, 0, data.address);
    finishData(dialogue->writeBlock(data.address, data.data, devType,
                                    progressOf(data.showPr, data.address)));
}

void noxSerialPortThread::sendNextDataWord()
{
    finishData(dialogue->writeWord(data.address, data.data));
}

void noxSerialPortThread::finishQuery(LinkResult result, ExchangeKind kind, const QByteArray &reply)
{
    if (!mayGoOn())
        return;
    if (result != LinkResult::Done) {
        failQuery(result, kind);
        return;
    }
    showProgress(query.showPr, -1, 0, query.address);
    emit readyQuery(new QByteArray(reply), query.address);
    query.address = noAddress;
    queryAttempt = 0;
    showProgress(query.showPr, 0, 0, noAddress);
    measTimer->start();
    endExchange(StreamStart::Anew);
}

void noxSerialPortThread::failQuery(LinkResult result, ExchangeKind kind)
{
    showProgress(query.showPr, -1, 0, query.address);
    const RetryStep step = nextRetryStep(kind, query.qMode, queryAttempt);
    queryAttempt = step.attempts;
    if (step.action != RetryStep::GiveUp) {
        scheduleRetry(step, &noxSerialPortThread::sendNextQuery);
        return;
    }
    showProgress(query.showPr, 0, 0, query.address);
    if (deliversEmptyReply(kind, query.qMode))
        emit readyQuery(new QByteArray, query.address);
    else
        emit onSendQueryError(quint16(result), query);
    query.address = noAddress;
    measTimer->start();
    endExchange(StreamStart::Anywhere);
}

void noxSerialPortThread::finishData(LinkResult result)
{
    if (!mayGoOn())
        return;
    if (result != LinkResult::Done) {
        failData(result);
        return;
    }
    showProgress(data.showPr, -1, 0, data.address);
    data.address = noAddress;
    emit doneSend();
    dataAttempt = 0;
    showProgress(data.showPr, 0, 0, noAddress);
    measTimer->start();
    endExchange(StreamStart::Anew);
}

void noxSerialPortThread::failData(LinkResult result)
{
    showProgress(data.showPr, -1, 0, data.address);
    const RetryStep step = nextRetryStep(ExchangeKind::Write, data.qMode, dataAttempt);
    dataAttempt = step.attempts;
    if (step.action != RetryStep::GiveUp) {
        scheduleRetry(step, &noxSerialPortThread::sendNextData);
        return;
    }
    showProgress(data.showPr, 0, 0, data.address);
    emit onSendDataError(quint16(result), data);
    data.address = noAddress;
    // the watchdog starts again with the stream
    endExchange(StreamStart::Anywhere);
}

/** Leaves the line empty and tells the parser where in the stream the next byte will stand. */
void noxSerialPortThread::endExchange(StreamStart start)
{
    // After a complete dialogue the instrument begins its stream anew. After a failed one, or when
    // the stream was quicker than the clearing, a token has been cut.
    const bool nothingLost = dialogue->clear();
    if (start == StreamStart::Anew && nothingLost)
        parser.restart();
    else
        parser.skipToNextToken();
}

/**
 * False when an exchange is to be abandoned: on a stop request, which leaves the line empty, or on
 * a lost port, which is reported here because its own signal may have been held back.
 */
bool noxSerialPortThread::mayGoOn()
{
    if (running)
        lookForLostPort();
    if (!running)
        dialogue->clear();
    return running;
}

void noxSerialPortThread::lookForLostPort()
{
    if (port->isOpen())
        onPortError(port->error());
}

void noxSerialPortThread::onPortError(QSerialPort::SerialPortError error)
{
    assertWorkerThread();
    if (!isFatalPortError(error)) {
        if (error != QSerialPort::NoError)
            port->clearError();
        return;
    }
    // a lost port raises its error again and again until it is closed: report it once
    if (!running.exchange(false))
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
    if (portName.isEmpty()) {
        emit onError(portNameEmptyCode);
        return false;
    }
    // closing a port that is closed raises an error of its own
    if (port->isOpen())
        port->close();
    port->disconnect();
    parser.dropOpenToken();
    // asked anew each time: an instrument that comes back may stand behind another device
    port->setPortName(PortCatalog::current().find(portName).device);
    if (!port->open(QIODevice::ReadWrite)) {
        emit onError(portOpenFailedCode);
        return false;
    }
    port->setBaudRate(baudRate, QSerialPort::AllDirections);
    port->setDataBits(QSerialPort::Data8);
    port->setParity(QSerialPort::NoParity);
    port->setStopBits(QSerialPort::OneStop);
    port->setFlowControl(QSerialPort::NoFlowControl);
    connect(port.get(), &QSerialPort::readyRead, this, &noxSerialPortThread::readyRead);
    connect(port.get(), &QSerialPort::errorOccurred, this, &noxSerialPortThread::onPortError);
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

template<typename Slot>
void noxSerialPortThread::scheduleStart(int baseDelayMs, Slot slot)
{
    // a coarse timer, Qt's choice from 2 s on, would fire up to a twentieth too early
    QTimer::singleShot(startDelay(timing, baseDelayMs), Qt::PreciseTimer, this, slot);
}

template<typename Slot>
void noxSerialPortThread::scheduleRetry(const RetryStep &step, Slot slot)
{
    switch (step.action) {
    case RetryStep::RetryQuickly:
        scheduleStart(0, slot);
        break;
    case RetryStep::Retry:
        scheduleStart(timing.attemptDelay, slot);
        break;
    case RetryStep::ReopenAndRetry:
        // when it cannot be reopened the retry ends here; the error has been reported
        if (reConnect())
            scheduleStart(2 * timing.attemptDelay, slot);
        break;
    case RetryStep::GiveUp:
        break;
    }
}
