#pragma once

#include "platform/ffmpeg/PicturePresenter.h"
#include "platform/ffmpeg/SoundLoader.h"

namespace tavi {

/// One item in a player: what decodes and presents it.
///
/// Threads: the controlling thread; nothing waits but the destructor, which takes as long as the
/// machine needs for a picture.
class PlayingItem {
public:
    /// Reads the file, paused at time 0. A delayed track has no sound.
    PlayingItem(const PlayerItem& item, std::shared_ptr<const ColorConverter> colours,
                SoundOutputs& sound, PicturePresenter::Observer observer)
        : m_pictures(item, PlayerClock::standing({}), std::move(colours), std::move(observer)) {
        if (!item.delayedTrack) {
            m_sound = std::make_unique<SoundLoader>(item.path, sound);
        }
    }

    void setClock(const PlayerClock& clock, bool isJump) {
        m_pictures.setClock(clock, isJump);
        if (m_sound) {
            m_sound->setClock(clock);
        }
    }

    PicturePresenter& pictures() { return m_pictures; }

    /// Ends soon.
    void stop() {
        m_pictures.stop();
        if (m_sound) {
            m_sound->stop();
        }
    }

private:
    PicturePresenter m_pictures;
    std::unique_ptr<SoundLoader> m_sound;
};

} // namespace tavi
