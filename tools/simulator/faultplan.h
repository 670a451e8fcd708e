#pragma once

#include <QtGlobal>

#include <limits>

/**
 * What goes wrong with an instrument; the default plan is a healthy one.
 *
 * Counts tell how often a fault strikes from the moment the plan takes effect; `always` never
 * wears off. What is left to chance follows from `seed`.
 */
struct FaultPlan {
    static constexpr int always = std::numeric_limits<int>::max();

    quint32 seed = 1;

    // any byte that the instrument sends
    double lossProbability = 0.0;   ///< 0 to 1, of a byte that never arrives
    double garbleProbability = 0.0; ///< 0 to 1, of a byte that arrives altered

    // one byte of the answer that follows the command byte, counted from 1; 0 is none
    int lostAnswerByte = 0;
    int garbledAnswerByte = 0;
    int unplugAfterAnswerBytes = 0; ///< the plug is pulled once so many bytes were answered
    int returnAfterMs = 0;          ///< how long the plug stays out; 0 for good

    // addressing and synchronisation
    int ignoredAddressings = 0;      ///< address bytes without any reaction
    int wrongAddressEchoes = 0;      ///< echoes of another value
    int extraEchoBytes = 0;          ///< echoes followed by a second byte
    int missingSynchronisations = 0; ///< confirmed addresses after which nothing comes
    int wrongPatterns = 0;           ///< patterns of synchronisation with a wrong byte

    // transfer of blocks
    int missingConfirmations = 0; ///< blocks left without the byte 0x0F
    int wrongConfirmations = 0;   ///< blocks confirmed with another byte
    int shortBlocks = 0;          ///< blocks, words or records that end two bytes early
    int wrongBlockEchoes = 0;     ///< written blocks or words echoed with a wrong byte
    int silentAfterBlocks = -1;   ///< blocks or records, then silence until the time-out; -1 never
    int silentDialogues = always; ///< dialogues that fall silent so

    // measurement stream
    double streamNoiseProbability = 0.0; ///< 0 to 1, of a token spoiled by foreign bytes or colons
    int streamBurstBytes = 0;            ///< length of one burst without a space before a token
};

/** Uses up one of `count` strikes; false when none is left. */
inline bool takeFault(int &count)
{
    if (count <= 0)
        return false;
    if (count != FaultPlan::always)
        --count;
    return true;
}
