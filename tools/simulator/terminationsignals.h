#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

/** Turns SIGTERM and SIGINT of this process into a Qt signal; one object for a program. */
class TerminationSignals : public QObject
{
    Q_OBJECT
public:
    /** From now on the signals no longer end the process by themselves. */
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

signals:
    /** One of the signals arrived. */
    void terminationRequested();

private:
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
