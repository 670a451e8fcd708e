#include "outagefaults.h"
#include "plot/qwtnox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "support/fulldisk.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QPushButton>

#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr int retryMs = 4000; ///< in which what was refused is stored, generously

bool isHintShown(OutageRig &rig)
{
    return rig.window().findChild<QLabel *>(QStringLiteral("databaseHint"))->isVisible();
}

// What an operator changes

QCheckBox *autoconnectBox(OutageRig &rig)
{
    const auto *const button = rig.window().findChild<QPushButton *>(QStringLiteral("settingsBtn"));
    return button->menu()->findChild<QCheckBox *>();
}

/** Settings of the program, of the plot and of a channel; each may wait for the database. */
void changeSettings(OutageRig &rig, int round)
{
    autoconnectBox(rig)->setChecked(round % 2 == 0);
    rig.run(20);
    for (int instrument = 0; instrument < OutageRig::instruments; ++instrument) {
        rig.window().plot()->setChScaleY(uchar(1 + round), rig.record(instrument).qwtIndex, 0);
        rig.run(20);
        rig.record(instrument)
            .opt->setChMeasType(0, measTemperatureCustom, QStringLiteral("u%1").arg(round));
        rig.run(20);
    }
    const noxList::_nox &current = rig.record(round % OutageRig::instruments);
    QMetaObject::invokeMethod(&rig.window(), "on_devTable_cellPressed",
                              Q_ARG(int, rig.registry().indices().indexOf(current.index) + 1),
                              Q_ARG(int, 1));
    rig.run(20);
}

/** All that the operator has changed, as the file tells it. */
const auto storedSettings = QStringLiteral(
    "SELECT group_concat(app_property_val) FROM (SELECT * FROM app_property WHERE"
    " app_property_key IN ('autoconnect', 'main_device_id') ORDER BY app_property_key);"
    "SELECT group_concat(device_property_val) FROM (SELECT * FROM device_property WHERE"
    " device_property_key IN ('qwt_ch_0-dY', 'ch_0-dim') ORDER BY device_id, device_property_key)");

QString wantedSettings(OutageRig &rig, int round)
{
    QStringList ofInstruments;
    for (int instrument = 0; instrument < OutageRig::instruments; ++instrument)
        ofInstruments << QStringLiteral("u%1,%2").arg(round).arg(1 + round);
    return QStringLiteral("%1,%2\n%3")
        .arg(round % 2 == 0)
        .arg(rig.record(round % OutageRig::instruments).dbIndex)
        .arg(ofInstruments.join(','));
}

/** After the fault: what was changed is stored, the file is sound, and the hint has gone. */
void promiseStored(OutageRig &rig, int round)
{
    rig.promise(rig.waitFor([&] { return !isHintShown(rig); }, retryMs),
                QStringLiteral("it is told that settings are stored again"));
    rig.run(1500);
    rig.promise(rig.askDatabase(storedSettings) == wantedSettings(rig, round),
                QStringLiteral("no setting is lost"));
    rig.promise(rig.askDatabase(QStringLiteral("PRAGMA integrity_check")) == QLatin1String("ok"),
                QStringLiteral("the database is sound"));
}

/** One round in which the database takes nothing while a fault lasts. */
template<typename End>
void changeDuring(OutageRig &rig, int round, End end)
{
    rig.struck(0);
    changeSettings(rig, round);
    rig.run(1500);
    rig.promise(isHintShown(rig), QStringLiteral("it is told that settings are not stored"));
    changeSettings(rig, round + 1);
    end();
    promiseStored(rig, round + 1);
    rig.promiseAllGoesOn();
}

// What happens to the file

/** Another program that holds the database. */
class Holder
{
public:
    explicit Holder(OutageRig &rig)
        : m_rig(rig)
    {
        rig.startClient(m_client, {});
        m_client.write("BEGIN EXCLUSIVE; SELECT 'held';\n");
        rig.waitFor([this] { return m_client.readAllStandardOutput().contains("held"); });
    }
    void letGo()
    {
        m_client.closeWriteChannel();
        m_rig.waitFor([this] { return m_client.state() == QProcess::NotRunning; });
    }

private:
    OutageRig &m_rig;
    QProcess m_client;
};

void holdIt(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        Holder holder(rig);
        changeDuring(rig, 2 * i, [&] { holder.letGo(); });
    }
}

/** An instrument comes while the database is held, and is known to it afterwards. */
void holdItWhilePlugsReturn(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        Holder holder(rig);
        rig.pull(0);
        rig.struck(1);
        rig.run(500);
        rig.plugIn(0);
        rig.findAgain();
        rig.waitFor([&] { return rig.window().serialPort()->isReadAllQuery(); });
        holder.letGo();
        rig.promise(rig.waitFor([&] { return rig.record(0).dbIndex > 0; }, retryMs),
                    QStringLiteral("the instrument is known to the database"));
    }
    rig.promiseAllGoesOn();
}

void removeIt(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        const QString path = rig.databasePath();
        rig.watch().leaveOut([&] { QDir(QFileInfo(path).path()).removeRecursively(); });
        rig.struck(0);
        changeSettings(rig, i);
        rig.promise(rig.waitFor([&] { return QFile::exists(path); }, retryMs),
                    QStringLiteral("the file is put back"));
        promiseStored(rig, i);
    }
    rig.promiseAllGoesOn();
}

void fillItsDisk(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        // not even the recordings have room, which are small
        rig.loseRounds();
        auto disk = std::make_unique<FullDisk>(100);
        changeDuring(rig, 2 * i, [&] {
            disk.reset();
            rig.loseNoMore();
        });
    }
}

/** Takes the right to write from the thread of the window; of root, that to pass over rights. */
void setWritable(const QString &folder, bool writable)
{
    constexpr uid_t nobody = 65534;
    ::chmod(QFile::encodeName(folder).constData(), writable ? 0755 : 0555);
    if (::geteuid() == 0)
        ::setfsuid(writable ? 0 : nobody);
}

void takeRights(OutageRig &rig, int times)
{
    // the folders above are the user's own
    for (QDir above(rig.path(QString())); above.absolutePath() != QDir::tempPath(); above.cdUp())
        ::chmod(QFile::encodeName(above.absolutePath()).constData(), 0755);
    const QString folder = QFileInfo(rig.databasePath()).path();
    for (int i = 0; i < times; ++i) {
        rig.loseRounds();
        setWritable(folder, false);
        changeDuring(rig, 2 * i, [&] {
            setWritable(folder, true);
            rig.loseNoMore();
        });
    }
}

} // namespace

QVector<Fault> databaseFaults()
{
    const Playground here = Playground::ThisProcess;
    return {{QStringLiteral("the database is held"), here, holdIt, 5},
            {QStringLiteral("... while a plug returns"), here, holdItWhilePlugsReturn, 5, 1},
            {QStringLiteral("the database is removed"), here, removeIt, 5},
            {QStringLiteral("the disk is full"), here, fillItsDisk, 5},
            {QStringLiteral("the rights are taken"), here, takeRights, 5}};
}
