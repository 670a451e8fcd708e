#pragma once

#include <QString>
#include <QVector>

#include <memory>

/** One serial port that a user can choose. */
struct SerialPortEntry {
    QString name;        ///< what menus and tables show and what callers pass around
    QString device;      ///< what QSerialPort opens: a system name or the path of a terminal
    bool busy = false;   ///< another program (or this one) has it open
    bool denied = false; ///< the user may not open it
    QString group = {};  ///< whose members may, of one that is denied; empty: none does
};

/**
 * The one place that knows which serial ports exist.
 *
 * Everything that lists, checks or opens a port asks the catalogue in effect. It may be asked
 * from any thread.
 */
class PortCatalog
{
public:
    virtual ~PortCatalog() = default;

    /** Every port, in the order to show them; names are unique. */
    virtual QVector<SerialPortEntry> ports() const = 0;

    /** The port of that name; an entry with an empty name when there is none. Each opening of a
     *  port asks for it, so catalogues of many ports look at the one alone. */
    virtual SerialPortEntry find(const QString &name) const;

    /** The catalogue in effect: at first the one of this machine. */
    static const PortCatalog &current();

    /** Replaces it (for tests; not while a link is running). Null restores that of the machine. */
    static void setCurrent(std::unique_ptr<PortCatalog> catalog);
};

/** Virtual ports: every link in a directory whose target is a terminal device that exists. */
class VirtualPortCatalog : public PortCatalog
{
public:
    explicit VirtualPortCatalog(const QString &directory = defaultDirectory());

    QVector<SerialPortEntry> ports() const override;
    SerialPortEntry find(const QString &name) const override;

    /** `nox8/ports` in the user's runtime directory. */
    static QString defaultDirectory();

private:
    QString m_directory;
};

/** The ports of this machine: those of the system and, beside them, the virtual ones. */
class MachinePortCatalog : public PortCatalog
{
public:
    QVector<SerialPortEntry> ports() const override;
    SerialPortEntry find(const QString &name) const override;
};
