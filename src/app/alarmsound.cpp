#include "app/alarmsound.h"

#include <QElapsedTimer>
#include <QSound>

#include <memory>
#include <utility>

namespace
{

constexpr qint64 longestPlayMs = 2000; ///< three times as long as the sound

/** The sound with the time of its last start. */
struct TimedSound {
    QSound sound{QStringLiteral(":/resource/alert.wav")};
    QElapsedTimer sinceStart;
};

AlarmSound::Player builtInSound()
{
    const auto timed = std::make_shared<TimedSound>();
    const auto play = [timed] {
        timed->sinceStart.start();
        timed->sound.play();
    };
    // while there is no audio server it never reports an end: a later alarm must be heard all the
    // same when the server is back
    const auto isFinished = [timed] {
        return timed->sound.isFinished() || timed->sinceStart.hasExpired(longestPlayMs);
    };
    return {play, isFinished};
}

} // namespace

AlarmSound::AlarmSound()
    : m_player(builtInSound())
{
}

void AlarmSound::setPlayer(Player player)
{
    m_player = std::move(player);
}

void AlarmSound::play() const
{
    if (m_player.isFinished())
        m_player.play();
}
