#include "outagefaults.h"

#include <QDir>
#include <QFile>
#include <QToolButton>

namespace
{

constexpr int roundsMs = 2000; ///< some rounds of measuring

bool isMarked(OutageRig &rig)
{
    const auto *const button = rig.window().findChild<QToolButton *>(QStringLiteral("recBtn"));
    return button->property("fault").toBool();
}

/** The recordings cannot be written for some rounds: the button says so as long, and no longer. */
template<typename Begin, typename End>
void loseRounds(OutageRig &rig, Begin begin, End end)
{
    rig.loseRounds();
    rig.watch().leaveOut(begin);
    rig.struck(0);
    rig.run(roundsMs);
    rig.promise(isMarked(rig), QStringLiteral("the button is marked"));
    rig.watch().leaveOut(end);
    rig.loseNoMore();
    rig.run(roundsMs);
    rig.promise(!isMarked(rig), QStringLiteral("the mark goes"));
    rig.promiseAllGoesOn();
}

/** As a memory stick that is drawn out and put in again. */
void takeTheirFolder(OutageRig &rig, int times)
{
    const QString folder = rig.recordingFolder();
    const QString elsewhere = rig.path(QStringLiteral("elsewhere"));
    for (int i = 0; i < times; ++i)
        loseRounds(
            rig, [&] { QDir().rename(folder, elsewhere); },
            [&] { QDir().rename(elsewhere, folder); });
}

/** A folder stands where a recording was. */
void blockTheirNames(OutageRig &rig, int times)
{
    const QString name = rig.recordingPath(0);
    const QString elsewhere = rig.path(QStringLiteral("elsewhere"));
    const auto block = [&] { QFile::rename(name, elsewhere) && QDir().mkdir(name); };
    const auto free = [&] { QDir().rmdir(name) && QFile::rename(elsewhere, name); };
    for (int i = 0; i < times; ++i)
        loseRounds(rig, block, free);
}

} // namespace

QVector<Fault> recordingFaults()
{
    const Playground here = Playground::ThisProcess;
    return {{QStringLiteral("the recordings' folder goes"), here, takeTheirFolder, 10},
            {QStringLiteral("a recording's name is taken"), here, blockTheirNames, 5}};
}
