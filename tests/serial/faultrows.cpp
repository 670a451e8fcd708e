#include "faulttrial.h"

namespace
{

constexpr int always = FaultPlan::always;
constexpr int referenceUnits = 18; // 72 bytes
constexpr int syncUnitMs = 30;     // where no unit is ever reached
constexpr int realUnitMs = 500;    // the instrument repeats a unit between two of these waits
constexpr noxQueryMode onceOrEmpty = noxQueryMode(noxQueryModeOnce | noxQueryModeEmpty);

const Attempt unaddressed{3, -1};
const Attempt unsynchronised{1, -1};
const Attempt complete{1, referenceUnits};
const Attempt wordFailed{1, -1};

Attempt stuckAfter(int units)
{
    return {1, units};
}

/** The whole schedule, each attempt alike. */
QVector<Attempt> fourTimes(const Attempt &attempt)
{
    return QVector<Attempt>(4, attempt);
}

/** A plan with one fault: `plan(&FaultPlan::shortBlocks, 2)`. */
FaultPlan plan(int FaultPlan::*fault, int strikes)
{
    FaultPlan faults;
    faults.*fault = strikes;
    return faults;
}

/** Silence after so many units, in so many dialogues. */
FaultPlan silentAfter(int units, int dialogues)
{
    FaultPlan faults;
    faults.silentAfterBlocks = units;
    faults.silentDialogues = dialogues;
    return faults;
}

QVector<FaultRow> addressingRows()
{
    const FaultPlan silent = plan(&FaultPlan::ignoredAddressings, always);
    const FaultPlan wrong = plan(&FaultPlan::wrongAddressEchoes, always);
    return {
        {"addressing, block read: silence", Exchange::BlockRead, silent, fourTimes(unaddressed),
         110},
        {"addressing, record read: wrong echo", Exchange::RecordRead, wrong, fourTimes(unaddressed),
         110},
        {"addressing, word read: silence", Exchange::WordRead, silent, fourTimes(unaddressed), 110},
        {"addressing, block write: wrong echo", Exchange::BlockWrite, wrong, fourTimes(unaddressed),
         210},
        {"addressing, word write: silence", Exchange::WordWrite, silent, fourTimes(unaddressed),
         210},
        {"addressing, block read: a second byte beside the echo", Exchange::BlockRead,
         plan(&FaultPlan::extraEchoBytes, always), fourTimes(unaddressed), 110},
        {"addressing: the third echo is right",
         Exchange::BlockRead,
         plan(&FaultPlan::wrongAddressEchoes, 2),
         {{3, referenceUnits}}},
        {"addressing: the second attempt is heard",
         Exchange::BlockRead,
         plan(&FaultPlan::ignoredAddressings, 3),
         {unaddressed, complete}},
        {"addressing: heard after the reopening",
         Exchange::BlockWrite,
         plan(&FaultPlan::ignoredAddressings, 6),
         {unaddressed, unaddressed, complete}},
        {"addressing: the last attempt is heard",
         Exchange::BlockRead,
         plan(&FaultPlan::ignoredAddressings, 9),
         {unaddressed, unaddressed, unaddressed, complete}},
    };
}

QVector<FaultRow> synchronisationRows()
{
    const FaultPlan missing = plan(&FaultPlan::missingSynchronisations, always);
    const FaultPlan wrong = plan(&FaultPlan::wrongPatterns, always);
    return {
        {"synchronisation, block read: silence", Exchange::BlockRead, missing,
         fourTimes(unsynchronised), 120, noxQueryModeNormal, syncUnitMs},
        {"synchronisation, record read: wrong pattern", Exchange::RecordRead, wrong,
         fourTimes(unsynchronised), 120, noxQueryModeNormal, syncUnitMs},
        {"synchronisation, block write: silence", Exchange::BlockWrite, missing,
         fourTimes(unsynchronised), 220, noxQueryModeNormal, syncUnitMs},
        {"synchronisation: the second attempt gets its pattern",
         Exchange::BlockWrite,
         plan(&FaultPlan::missingSynchronisations, 1),
         {unsynchronised, complete}},
        {"synchronisation: the pattern comes right in the end",
         Exchange::BlockRead,
         plan(&FaultPlan::wrongPatterns, 5),
         {complete},
         0,
         noxQueryModeNormal,
         realUnitMs},
    };
}

QVector<FaultRow> blockReadRows()
{
    const auto read = Exchange::BlockRead;
    return {
        {"block read: lost bytes", read, plan(&FaultPlan::shortBlocks, always),
         fourTimes(stuckAfter(0)), 130},
        {"block read: missing confirmation", read, plan(&FaultPlan::missingConfirmations, always),
         fourTimes(stuckAfter(0)), 130},
        {"block read: silence", read, silentAfter(2, always), fourTimes(stuckAfter(2)), 130},
        {"block read: silence in one dialogue", read, silentAfter(5, 1), {stuckAfter(5), complete}},
        {"block read: one byte lost",
         read,
         plan(&FaultPlan::lostAnswerByte, 7),
         {complete},
         0,
         noxQueryModeNormal,
         realUnitMs},
        {"block read: one confirmation missing",
         read,
         plan(&FaultPlan::missingConfirmations, 1),
         {complete},
         0,
         noxQueryModeNormal,
         realUnitMs},
        {"block read: nine wrong confirmations in a row",
         read,
         plan(&FaultPlan::wrongConfirmations, 9),
         {complete},
         0,
         noxQueryModeOnce,
         realUnitMs},
        {"block read: ten wrong confirmations in a row",
         read,
         plan(&FaultPlan::wrongConfirmations, 10),
         {stuckAfter(0)},
         130,
         noxQueryModeOnce,
         realUnitMs},
    };
}

QVector<FaultRow> recordAndWordReadRows()
{
    const FaultPlan shortUnits = plan(&FaultPlan::shortBlocks, always);
    const int records = 19; // a start, and two marks with eight channels each
    return {
        {"record read: lost bytes", Exchange::RecordRead, shortUnits, fourTimes(stuckAfter(0)),
         130},
        {"record read: silence", Exchange::RecordRead, silentAfter(3, always),
         fourTimes(stuckAfter(3)), 130},
        {"record read: silence in one dialogue",
         Exchange::RecordRead,
         silentAfter(3, 1),
         {stuckAfter(3), {1, records}}},
        {"word read: lost bytes", Exchange::WordRead, shortUnits, fourTimes(wordFailed), 130},
        {"word read: bytes lost once",
         Exchange::WordRead,
         plan(&FaultPlan::shortBlocks, 1),
         {wordFailed, wordFailed}},
    };
}

QVector<FaultRow> writeRows()
{
    const FaultPlan wrongEchoes = plan(&FaultPlan::wrongBlockEchoes, always);
    const auto block = Exchange::BlockWrite;
    const auto word = Exchange::WordWrite;
    return {
        {"block write: wrong echo", block, wrongEchoes, fourTimes(stuckAfter(0)), 230},
        {"block write: silence", block, silentAfter(4, always), fourTimes(stuckAfter(4)), 230},
        {"block write: silence in one dialogue",
         block,
         silentAfter(4, 1),
         {stuckAfter(4), complete}},
        {"block write: a byte of an echo lost",
         block,
         plan(&FaultPlan::lostAnswerByte, 7),
         {complete},
         0,
         noxQueryModeNormal,
         realUnitMs},
        {"block write: nine wrong echoes in a row",
         block,
         plan(&FaultPlan::wrongBlockEchoes, 9),
         {complete},
         0,
         noxQueryModeNormal,
         realUnitMs},
        {"block write: ten wrong echoes in a row",
         block,
         plan(&FaultPlan::wrongBlockEchoes, 10),
         {stuckAfter(0), complete},
         0,
         noxQueryModeNormal,
         realUnitMs},
        {"block write: two confirmations missing",
         block,
         plan(&FaultPlan::missingConfirmations, 2),
         {complete}},
        {"block write: a confirmation of another value",
         block,
         plan(&FaultPlan::wrongConfirmations, 1),
         {complete}},
        {"word write: wrong echo", word, wrongEchoes, fourTimes(wordFailed), 230},
        {"word write: silence", word, silentAfter(0, always), fourTimes(wordFailed), 230},
        {"word write: wrong echo once",
         word,
         plan(&FaultPlan::wrongBlockEchoes, 1),
         {wordFailed, wordFailed}},
    };
}

QVector<FaultRow> modeRows()
{
    const FaultPlan silent = plan(&FaultPlan::ignoredAddressings, always);
    const FaultPlan mute = silentAfter(1, always);
    return {
        {"mode once, block read: one attempt",
         Exchange::BlockRead,
         silent,
         {unaddressed},
         110,
         noxQueryModeOnce},
        {"mode fast, block read: three attempts", Exchange::BlockRead, silent,
         QVector<Attempt>(3, unaddressed), 110, noxQueryModeFast},
        {"mode fast, block read: the second attempt is heard",
         Exchange::BlockRead,
         plan(&FaultPlan::ignoredAddressings, 3),
         {unaddressed, complete},
         0,
         noxQueryModeFast},
        {"mode empty, block read: an empty reply in the end", Exchange::BlockRead, silent,
         fourTimes(unaddressed), 0, noxQueryModeEmpty, 200, true},
        {"modes once and empty, block read",
         Exchange::BlockRead,
         mute,
         {stuckAfter(1)},
         0,
         onceOrEmpty,
         100,
         true},
        {"mode empty, record read: an empty reply in the end", Exchange::RecordRead, mute,
         fourTimes(stuckAfter(1)), 0, noxQueryModeEmpty, 200, true},
        {"modes once and fast change no record read", Exchange::RecordRead, mute,
         fourTimes(stuckAfter(1)), 130, noxQueryMode(noxQueryModeOnce | noxQueryModeFast)},
        {"mode empty changes no word read", Exchange::WordRead,
         plan(&FaultPlan::shortBlocks, always), fourTimes(wordFailed), 130, noxQueryModeEmpty},
        {"mode once changes no block write", Exchange::BlockWrite, mute, fourTimes(stuckAfter(1)),
         230, noxQueryModeOnce},
    };
}

} // namespace

QVector<FaultRow> faultRows()
{
    return addressingRows() + synchronisationRows() + blockReadRows() + recordAndWordReadRows() +
           writeRows() + modeRows();
}
