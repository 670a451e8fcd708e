#include "app/alarmsound.h"

#include <QSound>

#include <memory>
#include <utility>

namespace
{

AlarmSound::Player builtInSound()
{
    const auto sound = std::make_shared<QSound>(QStringLiteral(":/resource/alert.wav"));
    return {[sound] { sound->play(); }, [sound] { return sound->isFinished(); }};
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
