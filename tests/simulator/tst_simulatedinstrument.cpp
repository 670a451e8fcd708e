#include "simulator/instrumenthost.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{

/** A host's end of the line, opened by path without touching its settings. */
class FarEnd
{
public:
    explicit FarEnd(const QString &path)
        : m_descriptor(::open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
    }
    ~FarEnd() { close(); }
    Q_DISABLE_COPY(FarEnd)

    bool isOpen() const { return m_descriptor >= 0; }

    void close()
    {
        if (isOpen())
            ::close(m_descriptor);
        m_descriptor = -1;
    }

    void write(const QByteArray &bytes)
    {
        QCOMPARE(::write(m_descriptor, bytes.constData(), size_t(bytes.size())),
                 ssize_t(bytes.size()));
    }

    /** Up to `count` bytes, as many as come within `timeoutMs`. */
    QByteArray read(int count, int timeoutMs)
    {
        QByteArray bytes;
        QElapsedTimer timer;
        timer.start();
        while (bytes.size() < count && timer.elapsed() < timeoutMs && !m_hungUp) {
            pollfd line{m_descriptor, POLLIN, 0};
            if (::poll(&line, 1, 5) > 0)
                bytes += readOnce(count - bytes.size());
        }
        return bytes;
    }

    /** True once reading has failed for good. */
    bool isHungUp() const { return m_hungUp; }

private:
    QByteArray readOnce(int count)
    {
        QByteArray bytes(count, '\0');
        const ssize_t got = ::read(m_descriptor, bytes.data(), size_t(count));
        m_hungUp = got <= 0;
        return bytes.left(int(qMax(ssize_t(0), got)));
    }

    int m_descriptor;
    bool m_hungUp = false;
};

} // namespace

class TestSimulatedInstrument : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_host = std::make_unique<InstrumentHost>();
        m_options = {};
        m_options.portsDirectory = m_directory->filePath("nested");
    }

    void cleanup()
    {
        m_host.reset();
        m_directory.reset();
    }

    void linkIsPublishedAndRemoved()
    {
        QVERIFY(QDir().mkpath(m_options.portsDirectory));
        QVERIFY(QFile::link("/dev/pts/no-such-terminal", link()));
        const QString device = m_host->add(m_options, "port");
        QCOMPARE(QFile::symLinkTarget(link()), device);
        QCOMPARE(m_host->devicePath("port"), device);
        QCOMPARE(
            QDir(m_options.portsDirectory)
                .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
            QStringList{"port"});
        m_host.reset();
        QVERIFY(!QFileInfo(link()).isSymLink());
    }

    void silentWhileNobodyListens()
    {
        m_options.tokensPerSecond = 200.0;
        add(m_options);
        for (int i = 0; i < 2; ++i) {
            QTest::qWait(150);
            const qint64 before = m_host->tokensSent("port");
            QTest::qWait(100);
            QCOMPARE(m_host->tokensSent("port"), before);
            FarEnd end(link());
            const QByteArray heard = end.read(40, 1000);
            QVERIFY2(QRegularExpression("^[1-8]:2[0-9]\\.[0-9]{4}B ").match(heard).hasMatch(),
                     heard.constData());
        }
    }

    void streamIsCutShortBeforeTheEcho()
    {
        m_options.paced = true;
        m_options.tokensPerSecond = 2.0;
        add(m_options);
        FarEnd end(link());
        QVERIFY(!end.read(10, 1500).isEmpty());
        m_host->sendRaw("port", QByteArray(1000, 'x')); // more than a second at 9600 baud
        QVERIFY(!end.read(1, 500).isEmpty());
        end.write("\x33");
        const QByteArray heard = end.read(1000, 300);
        QVERIFY2(heard.endsWith('3') && heard.size() < 50, heard.constData());
    }

    void plugPulledInTheMiddleOfAnAnswer()
    {
        m_options.streaming = false;
        m_options.faults.unplugAfterAnswerBytes = 3;
        m_options.faults.returnAfterMs = 100;
        add(m_options);
        FarEnd end(link());
        for (const char *const step : {"33 33", "0f aa0fff00", "01 010000"}) {
            end.write(QByteArray::fromHex(QByteArray(step).left(2)));
            const QByteArray answer = QByteArray::fromHex(QByteArray(step).mid(3));
            QCOMPARE(end.read(qMin(4, answer.size() + 1), 300), answer);
        }
        QVERIFY(end.isHungUp());
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(link()), 2000);
        FarEnd returned(link());
        returned.write("3");
        QCOMPARE(returned.read(2, 300), QByteArray("3"));
    }

private:
    QString link() const { return m_directory->filePath("nested/port"); }

    void add(const SimulatedInstrumentOptions &options)
    {
        QVERIFY(!m_host->add(options, "port").isEmpty());
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<InstrumentHost> m_host;
    SimulatedInstrumentOptions m_options;
};

QTEST_GUILESS_MAIN(TestSimulatedInstrument)
#include "tst_simulatedinstrument.moc"
