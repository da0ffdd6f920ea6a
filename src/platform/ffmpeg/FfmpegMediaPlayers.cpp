#include "platform/ffmpeg/FfmpegMediaPlayers.h"

#include "platform/ffmpeg/FfmpegErrors.h"
#include "platform/ffmpeg/FfmpegMediaPlayer.h"

#include <utility>

namespace tavi {

FfmpegMediaPlayers::FfmpegMediaPlayers(Executor& main,
                                       std::shared_ptr<const ColorConverter> colours,
                                       SoundOutputs& sound)
    : m_main(main),
      m_colours(std::move(colours)),
      m_sound(sound) {
    silenceFfmpegLog();
}

std::unique_ptr<MediaPlayer> FfmpegMediaPlayers::makePlayer(const PlayerItem& item) {
    return std::make_unique<FfmpegMediaPlayer>(
        item, FfmpegMediaPlayer::Surroundings{m_main, m_colours, m_sound, m_ends});
}

} // namespace tavi
