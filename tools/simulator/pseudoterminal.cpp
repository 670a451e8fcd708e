#include "simulator/pseudoterminal.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace
{

constexpr double byteTimeMs = 10.0 * 1000.0 / 9600.0; // start bit, eight data bits, stop bit
constexpr int listenerPollMs = 20;
constexpr int pumpPeriodMs = 1;

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/** Sets the far end raw and leaves it closed: from now on the master reports a hang-up until a host
 *  opens it. The settings last as long as the master. */
bool prepareFarEnd(const char *path)
{
    const int slave = ::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave < 0)
        return false;
    termios settings{};
    const bool known = ::tcgetattr(slave, &settings) == 0;
    ::cfmakeraw(&settings);
    ::cfsetspeed(&settings, B9600);
    const bool ready = known && ::tcsetattr(slave, TCSANOW, &settings) == 0;
    ::close(slave);
    return ready;
}

/** Forgets what the last host left unread, so that the next one does not begin with its remains. */
void flushFarEnd(const QString &path)
{
    const int slave = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave < 0)
        return;
    ::tcflush(slave, TCIFLUSH);
    ::close(slave);
}

} // namespace

PseudoTerminal::PseudoTerminal(QObject *parent)
    : QObject(parent)
    , m_listenerTimer(this)
    , m_pumpTimer(this)
{
    // A spare far end kept open would hide whether a host listens. The hang-up that the master
    // reports instead has no notification for its end, hence the timer; the notifier is off
    // meanwhile, because a hung-up master is always "readable".
    m_listenerTimer.setInterval(listenerPollMs);
    connect(&m_listenerTimer, &QTimer::timeout, this, &PseudoTerminal::lookForListener);
    m_pumpTimer.setInterval(pumpPeriodMs);
    m_pumpTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_pumpTimer, &QTimer::timeout, this, &PseudoTerminal::pump);
}

PseudoTerminal::~PseudoTerminal()
{
    close();
}

bool PseudoTerminal::open(const QString &linkPath)
{
    close();
    if (!openMaster() || !publish(linkPath)) {
        const QString reason = systemError();
        close();
        m_errorText = reason;
        return false;
    }
    m_readable = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
    m_readable->setEnabled(false);
    connect(m_readable.get(), &QSocketNotifier::activated, this, [this] { readAvailable(); });
    m_writable = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Write);
    m_writable->setEnabled(false);
    connect(m_writable.get(), &QSocketNotifier::activated, this, [this] { pump(); });
    m_listenerTimer.start();
    return true;
}

bool PseudoTerminal::openMaster()
{
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0)
        return false;
    char path[64] = {};
    if (::ptsname_r(m_master, path, sizeof path) != 0)
        return false;
    m_devicePath = QFile::decodeName(path);
    return prepareFarEnd(path);
}

bool PseudoTerminal::publish(const QString &linkPath)
{
    if (!QDir().mkpath(QFileInfo(linkPath).path()))
        return false;
    // made aside and renamed, so that the name never points nowhere
    const QByteArray link = QFile::encodeName(linkPath);
    const QByteArray aside = QFile::encodeName(QFileInfo(linkPath).path() + QStringLiteral("/.") +
                                               QFileInfo(linkPath).fileName());
    ::unlink(aside.constData());
    if (::symlink(QFile::encodeName(m_devicePath).constData(), aside.constData()) != 0)
        return false;
    if (::rename(aside.constData(), link.constData()) != 0)
        return false;
    m_linkPath = linkPath;
    return true;
}

void PseudoTerminal::unpublish()
{
    // a namesake may have taken the link over
    if (!m_linkPath.isEmpty() && QFile::symLinkTarget(m_linkPath) == m_devicePath)
        QFile::remove(m_linkPath);
    m_linkPath.clear();
}

void PseudoTerminal::close()
{
    if (!isOpen())
        return;
    m_listenerTimer.stop();
    discardUnsent();
    m_readable.reset();
    m_writable.reset();
    unpublish();
    ::close(m_master);
    m_master = -1;
    m_listener = false;
}

void PseudoTerminal::lookForListener()
{
    pollfd master{m_master, POLLIN, 0};
    ::poll(&master, 1, 0);
    if (!(master.revents & POLLHUP))
        setListener(true);
}

void PseudoTerminal::setListener(bool listening)
{
    if (m_listener == listening)
        return;
    m_listener = listening;
    m_readable->setEnabled(listening);
    if (listening) {
        m_listenerTimer.stop();
    } else {
        m_listenerTimer.start();
        discardUnsent();
        flushFarEnd(m_devicePath);
    }
    emit listenerChanged(listening);
}

void PseudoTerminal::readAvailable()
{
    char buffer[4096];
    const ssize_t count = ::read(m_master, buffer, sizeof buffer);
    if (count > 0)
        emit received(QByteArray(buffer, int(count)));
    else if (count == 0 || (errno != EAGAIN && errno != EINTR))
        setListener(false);
}

void PseudoTerminal::send(const QByteArray &bytes)
{
    if (!m_listener || bytes.isEmpty())
        return;
    if (m_unsent.isEmpty()) {
        m_pacing.start();
        m_pacedBytes = 0;
    }
    m_unsent += bytes;
    if (m_paced)
        m_pumpTimer.start();
    else
        pump();
}

void PseudoTerminal::discardUnsent()
{
    m_unsent.clear();
    m_pumpTimer.stop();
    if (m_writable)
        m_writable->setEnabled(false);
}

/** How many bytes the line can have carried by now. */
qsizetype PseudoTerminal::allowance() const
{
    if (!m_paced)
        return m_unsent.size();
    const auto carried = qint64(double(m_pacing.nsecsElapsed()) / 1.0e6 / byteTimeMs);
    return qsizetype(qBound(qint64(0), carried - m_pacedBytes, qint64(m_unsent.size())));
}

void PseudoTerminal::pump()
{
    const qsizetype count = allowance();
    const ssize_t written = count > 0 ? ::write(m_master, m_unsent.constData(), size_t(count)) : 0;
    if (written > 0) {
        m_unsent.remove(0, int(written));
        m_pacedBytes += written;
    }
    if (m_unsent.isEmpty()) {
        discardUnsent();
        emit sent();
        return;
    }
    // the far end is full: go on when it has room
    m_writable->setEnabled(!m_paced && written < count);
}
