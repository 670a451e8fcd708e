#pragma once

#include <functional>

/** The sound of the limit alarm: one at a time, however many alarms are raised meanwhile. */
class AlarmSound
{
public:
    /** What makes the sound. */
    struct Player {
        std::function<void()> play;
        std::function<bool()> isFinished; ///< also before the first time
    };

    /** Plays the sound that is built in. */
    AlarmSound();
    /** A test hears what another player is asked for. */
    void setPlayer(Player player);

    void play() const;

private:
    Player m_player;
};
