#include "serial/portcatalog.h"
#include "support/instrumentbench.h"

#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

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
        InstrumentBench bench;
        const QDir directory(bench.steadyInstrument().portsDirectory);
        const VirtualPortCatalog catalog(directory.path());
        QCOMPARE(namesOf(catalog), QStringList());

        QVERIFY(bench.add("bath 2"));
        QFile::link("/dev/pts/nowhere", directory.filePath("gone"));
        QFile::link(directory.path(), directory.filePath("folder"));
        QFile plain(directory.filePath("plain file"));
        QVERIFY(plain.open(QIODevice::WriteOnly));
        QCOMPARE(namesOf(catalog), QStringList{"bath 2"});
        QCOMPARE(catalog.find("bath 2").device, bench.host.devicePath("bath 2"));
        for (const char *name :
             {"gone", "plain file", "folder", "folder/bath 2", ".", "Bath 2", ""})
            QVERIFY2(catalog.find(name).name.isEmpty(), name);
        QCOMPARE(namesOf(VirtualPortCatalog(directory.filePath("missing"))), QStringList());
    }

    void tellsWhichPortIsBusy()
    {
        InstrumentBench bench;
        QVERIFY(bench.add("bath"));
        const PortCatalog &catalog = PortCatalog::current();
        QSerialPort port(bench.host.devicePath("bath"));
        QVERIFY(!catalog.find("bath").busy && port.open(QIODevice::ReadWrite));
        QVERIFY(catalog.find("bath").busy && catalog.ports().first().busy);
        port.close();
        QVERIFY(!catalog.ports().first().busy);
    }

    void virtualPortsStandBesideThoseOfTheMachine()
    {
        InstrumentBench bench;
        QVERIFY(bench.add("only here"));
        const QString device = bench.host.devicePath("only here");
        const QTemporaryDir directory;
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(directory.path()));
        QVERIFY(QDir().mkpath(VirtualPortCatalog::defaultDirectory()));
        QFile::link(device, directory.filePath("nox8/ports/everywhere"));

        QCOMPARE(namesOf(PortCatalog::current()), QStringList{"only here"});
        PortCatalog::setCurrent(nullptr);
        QCOMPARE(namesOf(PortCatalog::current()).count("everywhere"), 1);
        QCOMPARE(PortCatalog::current().find("everywhere").device, device);
        QVERIFY(PortCatalog::current().find("only here").name.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestPortCatalog)
#include "tst_portcatalog.moc"
