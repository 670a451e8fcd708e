#include "serial/portcatalog.h"

#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <pty.h>
#include <unistd.h>

namespace
{

/** The master of a pseudo-terminal for as long as it lives. */
class Terminal
{
public:
    Terminal()
    {
        int slave = -1;
        ::openpty(&master, &slave, nullptr, nullptr, nullptr);
        device = QString::fromLocal8Bit(::ptsname(master));
        ::close(slave);
    }
    ~Terminal() { ::close(master); }
    Q_DISABLE_COPY(Terminal)

    QString device;

private:
    int master = -1;
};

QStringList namesOf(const PortCatalog &catalog)
{
    QStringList names;
    const auto ports = catalog.ports();
    for (const SerialPortEntry &port : ports)
        names << port.name;
    return names;
}

} // namespace

class TestPortCatalog : public QObject
{
    Q_OBJECT
private slots:
    void listsLinksToTerminals()
    {
        const QTemporaryDir directory;
        const VirtualPortCatalog catalog(directory.path());
        QCOMPARE(namesOf(catalog), QStringList());

        auto terminal = std::make_unique<Terminal>();
        QFile::link(terminal->device, directory.filePath("bath 2"));
        QFile::link("/dev/pts/nowhere", directory.filePath("gone"));
        QFile::link(directory.path(), directory.filePath("folder"));
        QFile plain(directory.filePath("plain file"));
        QVERIFY(plain.open(QIODevice::WriteOnly));
        QCOMPARE(namesOf(catalog), QStringList{"bath 2"});
        QCOMPARE(catalog.find("bath 2").device, terminal->device);
        for (const char *name :
             {"gone", "plain file", "folder", "folder/bath 2", ".", "Bath 2", ""})
            QVERIFY2(catalog.find(name).name.isEmpty(), name);

        terminal.reset();
        QCOMPARE(namesOf(catalog), QStringList());
        QCOMPARE(namesOf(VirtualPortCatalog(directory.filePath("missing"))), QStringList());
    }

    void tellsWhichPortIsBusy()
    {
        const QTemporaryDir directory;
        const Terminal terminal;
        QFile::link(terminal.device, directory.filePath("bath"));
        const VirtualPortCatalog catalog(directory.path());
        QSerialPort port(terminal.device);
        QVERIFY(!catalog.find("bath").busy && port.open(QIODevice::ReadWrite));
        QVERIFY(catalog.find("bath").busy && catalog.ports().first().busy);
        port.close();
        QVERIFY(!catalog.ports().first().busy);
    }

    void virtualPortsStandBesideThoseOfTheMachine()
    {
        const QTemporaryDir directory;
        const Terminal terminal;
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(directory.path()));
        QVERIFY(QDir().mkpath(VirtualPortCatalog::defaultDirectory()));
        QFile::link(terminal.device, directory.filePath("nox8/ports/everywhere"));
        QFile::link(terminal.device, directory.filePath("only here"));

        PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(directory.path()));
        QCOMPARE(namesOf(PortCatalog::current()), QStringList{"only here"});
        PortCatalog::setCurrent(nullptr);
        QCOMPARE(namesOf(PortCatalog::current()).count("everywhere"), 1);
        QCOMPARE(PortCatalog::current().find("everywhere").device, terminal.device);
        QVERIFY(PortCatalog::current().find("only here").name.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestPortCatalog)
#include "tst_portcatalog.moc"
