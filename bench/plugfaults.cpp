#include "outagefaults.h"
#include "plot/qwtnox.h"
#include "registry/findnox.h"

namespace
{

constexpr int longestPauseMs = 400;

/** What the program is at with an instrument while its plug is pulled. */
using Occupation = void (*)(OutageRig &rig, int instrument);

void measuring(OutageRig &rig, int instrument)
{
    Q_UNUSED(rig)
    Q_UNUSED(instrument)
}

void reading(OutageRig &rig, int instrument)
{
    rig.registry().getOptFromNox(rig.record(instrument).index);
}

void writing(OutageRig &rig, int instrument)
{
    rig.record(instrument).opt->triggerChChange(quint8(rig.chance(8)));
}

/** Pulls one plug, and waits for what the operator is to hear of it. */
void pullAndHear(OutageRig &rig, int instrument)
{
    const int before = rig.messages();
    rig.pull(instrument);
    rig.struck(1);
    rig.promise(rig.waitFor([&] { return rig.messages() > before; }),
                QStringLiteral("a pulled plug is told of"));
    rig.promise(!rig.record(instrument).isConnected(),
                QStringLiteral("the row of a pulled plug is grey"));
}

/** Pulls every plug at a moment of chance in an occupation; the instruments are found again. */
void pullEach(OutageRig &rig, int times, Occupation occupation)
{
    for (int i = 0; i < times; ++i) {
        for (int instrument = 0; instrument < OutageRig::instruments; ++instrument) {
            rig.run(rig.chance(longestPauseMs));
            occupation(rig, instrument);
            rig.run(rig.chance(longestPauseMs));
            pullAndHear(rig, instrument);
        }
        rig.run(rig.chance(longestPauseMs));
        for (int instrument = 0; instrument < OutageRig::instruments; ++instrument)
            rig.plugIn(instrument);
        rig.findAgain();
    }
    rig.promiseAllGoesOn();
}

template<Occupation occupation>
void pullEachWhile(OutageRig &rig, int times)
{
    pullEach(rig, times, occupation);
}

/** A plug goes while the program searches: who is not connected yet goes without a word. */
void pullWhileSearching(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        const int instrument = rig.chance(OutageRig::instruments);
        pullAndHear(rig, instrument);
        rig.plugIn(instrument);
        rig.window().discovery()->find(true);
        rig.run(rig.chance(longestPauseMs));
        const bool wasConnected = rig.record(instrument).isConnected();
        const int before = rig.messages();
        rig.pull(instrument);
        rig.run(1500);
        const int told = rig.messages() - before;
        // found and lost in one moment: it may have been connected, or not
        rig.struck(told <= 1 ? told : 1);
        rig.promise(!wasConnected || told == 1, QStringLiteral("a connected one is told of"));
        rig.plugIn(instrument);
        rig.findAgain();
    }
    rig.promiseAllGoesOn();
}

void pullHub(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        rig.run(rig.chance(longestPauseMs));
        const int before = rig.messages();
        for (int instrument = 0; instrument < OutageRig::instruments; ++instrument)
            rig.pull(instrument);
        rig.struck(OutageRig::instruments);
        rig.promise(rig.waitFor([&] { return rig.messages() == before + OutageRig::instruments; }),
                    QStringLiteral("each instrument of the hub is told of"));
        rig.run(rig.chance(longestPauseMs));
        for (int instrument = 0; instrument < OutageRig::instruments; ++instrument)
            rig.plugIn(instrument);
        rig.findAgain();
    }
    rig.promiseAllGoesOn();
}

} // namespace

QVector<Fault> plugFaults()
{
    const Playground here = Playground::ThisProcess;
    return {{QStringLiteral("plugs while they measure"), here, pullEachWhile<measuring>, 40, 1},
            {QStringLiteral("plugs while they are read"), here, pullEachWhile<reading>, 30, 1},
            {QStringLiteral("plugs while they are set"), here, pullEachWhile<writing>, 30, 1},
            {QStringLiteral("plugs while they are searched"), here, pullWhileSearching, 30, 1},
            {QStringLiteral("a hub with all of them"), here, pullHub, 20, OutageRig::instruments}};
}
