#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class QSocketNotifier;

/**
 * The line between an instrument and its host: a pseudo-terminal, published as a link.
 *
 * The far end is raw before anybody opens it. While nobody has it open, what is sent goes nowhere.
 */
class PseudoTerminal : public QObject
{
    Q_OBJECT
public:
    explicit PseudoTerminal(QObject *parent = nullptr);
    ~PseudoTerminal() override;

    /** Opens a new terminal and publishes it as `linkPath`, whose directory is made if needed and
     *  whose previous link is replaced; false if the system refuses (`errorText`). */
    bool open(const QString &linkPath);
    /** Closes the terminal, so that a host sees a hang-up, and removes its link. */
    void close();
    bool isOpen() const { return m_master >= 0; }

    /** The terminal's own path, /dev/pts/N. */
    QString devicePath() const { return m_devicePath; }
    QString errorText() const { return m_errorText; }
    bool hasListener() const { return m_listener; }

    /** Sends bytes at 9600 baud (one in 1.04 ms) instead of at once. */
    void setPaced(bool paced) { m_paced = paced; }
    /** Sends `bytes` after those that still wait. */
    void send(const QByteArray &bytes);
    /** Takes back what waits and has not reached the line. */
    void discardUnsent();
    bool isSent() const { return m_unsent.isEmpty(); }

signals:
    /** The host wrote `bytes`. */
    void received(const QByteArray &bytes);
    /** Everything given to `send` has reached the line. */
    void sent();
    /** A host opened the far end (true), or the last one closed it (false). */
    void listenerChanged(bool listening);

private:
    bool openMaster();
    bool publish(const QString &linkPath);
    void unpublish();
    void readAvailable();
    void lookForListener();
    void setListener(bool listening);
    void pump();
    qsizetype allowance() const;

    int m_master = -1;
    QString m_devicePath;
    QString m_linkPath;
    QString m_errorText;
    bool m_listener = false;
    bool m_paced = false;
    QByteArray m_unsent;
    QElapsedTimer m_pacing;  ///< since the line became busy
    qint64 m_pacedBytes = 0; ///< sent since then
    QTimer m_listenerTimer;
    QTimer m_pumpTimer;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
};
