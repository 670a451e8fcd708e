#include "serial/portcatalog.h"

#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <memory>
#include <stdlib.h>
#include <unistd.h>

namespace
{

/** The master of a pseudo-terminal for as long as it lives. */
class Terminal
{
public:
    Terminal()
        : master(::posix_openpt(O_RDWR | O_NOCTTY))
    {
        ::grantpt(master);
        ::unlockpt(master);
        device = QString::fromLocal8Bit(::ptsname(master));
    }
    ~Terminal() { ::close(master); }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    int master;
    QString device;
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
    void listsLinksToTerminals();
    void tellsWhichPortIsBusy();
    void findsByName();
    void canBeReplaced();
};

void TestPortCatalog::listsLinksToTerminals()
{
    const QTemporaryDir directory;
    const VirtualPortCatalog catalog(directory.path());
    QCOMPARE(namesOf(catalog), QStringList());

    auto terminal = std::make_unique<Terminal>();
    QFile::link(terminal->device, directory.filePath("bath 2"));
    QFile::link("/dev/pts/nowhere", directory.filePath("gone"));
    QFile plain(directory.filePath("plain file"));
    QVERIFY(plain.open(QIODevice::WriteOnly));
    QCOMPARE(namesOf(catalog), QStringList{"bath 2"});
    QCOMPARE(catalog.find("bath 2").device, terminal->device);
    QFile::link(directory.path(), directory.filePath("folder"));
    QCOMPARE(namesOf(catalog), QStringList{"bath 2"});
    for (const char *name : {"gone", "plain file", "folder", "folder/bath 2", "."})
        QVERIFY2(catalog.find(name).name.isEmpty(), name);

    terminal.reset();
    QCOMPARE(namesOf(catalog), QStringList());
    QCOMPARE(namesOf(VirtualPortCatalog(directory.filePath("missing"))), QStringList());
}

void TestPortCatalog::tellsWhichPortIsBusy()
{
    const QTemporaryDir directory;
    const Terminal terminal;
    QFile::link(terminal.device, directory.filePath("bath"));
    const VirtualPortCatalog catalog(directory.path());
    QVERIFY(!catalog.find("bath").busy);

    QSerialPort port(terminal.device);
    QVERIFY(port.open(QIODevice::ReadWrite));
    QVERIFY(catalog.find("bath").busy);
    port.close();
    QVERIFY(!catalog.find("bath").busy);
}

void TestPortCatalog::findsByName()
{
    const QTemporaryDir directory;
    const Terminal terminal;
    QFile::link(terminal.device, directory.filePath("bath"));
    const VirtualPortCatalog catalog(directory.path());
    QCOMPARE(catalog.find("bath").name, QStringLiteral("bath"));
    QCOMPARE(catalog.find("Bath").name, QString());
    QCOMPARE(catalog.find(QString()).name, QString());
}

void TestPortCatalog::canBeReplaced()
{
    const QTemporaryDir directory;
    const Terminal terminal;
    QFile::link(terminal.device, directory.filePath("only here"));
    PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(directory.path()));
    QCOMPARE(namesOf(PortCatalog::current()), QStringList{"only here"});
    PortCatalog::setCurrent(nullptr);
    QVERIFY(!namesOf(PortCatalog::current()).contains("only here"));
}

QTEST_GUILESS_MAIN(TestPortCatalog)
#include "tst_portcatalog.moc"
