#include "simulator/terminationsignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    sigset_t ending;
    ::sigemptyset(&ending);
    ::sigaddset(&ending, SIGTERM);
    ::sigaddset(&ending, SIGINT);
    ::sigprocmask(SIG_BLOCK, &ending, nullptr);
    m_descriptor = ::signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo arrived{};
        if (::read(m_descriptor, &arrived, sizeof arrived) == sizeof arrived)
            emit terminationRequested();
    });
}

TerminationSignals::~TerminationSignals()
{
    m_notifier.reset();
    ::close(m_descriptor);
}
