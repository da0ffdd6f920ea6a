#pragma once

#include "base/Executor.h"
#include "base/SerialQueue.h"
#include "media/ColorConversion.h"
#include "media/MediaPlayer.h"
#include "media/SoundOutput.h"

namespace tavi {

/// Players over the media libraries' decoders. The host clock moves them all, so those that are
/// started on one tick stay together; sound is placed on that clock.
///
/// Outlives its players. What a player leaves behind ends on a thread of this object, so
/// that replacing an item or letting go of a player takes no time; the destructor waits for it.
class FfmpegMediaPlayers final : public MediaPlayers {
public:
    /// `main` runs blocks on the thread that uses the players. `colours`: see PictureDecoding.
    /// Both `main` and `sound` outlive the object.
    FfmpegMediaPlayers(Executor& main, std::shared_ptr<const ColorConverter> colours,
                       SoundOutputs& sound);

    std::unique_ptr<MediaPlayer> makePlayer(const PlayerItem& item) override;

private:
    Executor& m_main;
    std::shared_ptr<const ColorConverter> m_colours;
    SoundOutputs& m_sound;
    SerialQueue m_ends{"player-ends"};
};

} // namespace tavi
