#pragma once

#include "base/Executor.h"
#include "base/SerialQueue.h"
#include "platform/ffmpeg/PlayingItem.h"

#include <atomic>

namespace tavi {

/// A player over the media libraries' decoders: see FfmpegMediaPlayers.
///
/// Holds the clock of its item; threads of the item follow it and tell of pictures, ticks and the
/// end, which reach the observers through the main thread's queue.
class FfmpegMediaPlayer final : public MediaPlayer {
public:
    /// What a player lives on; all of it outlives the player.
    struct Surroundings {
        Executor& main;
        std::shared_ptr<const ColorConverter> colours;
        SoundOutputs& sound;
        SerialQueue& ends; ///< Where finished items are let go.
    };

    FfmpegMediaPlayer(const PlayerItem& item, Surroundings surroundings);
    ~FfmpegMediaPlayer() override;

    void replaceCurrentItem(const PlayerItem& item) override;
    MediaTime currentTime() const override;
    void seek(MediaTime time) override;
    void setRate(double rate, MediaTime time, MediaTime hostTime) override;
    void pause() override;
    void setPeriodicTimeObserver(MediaTime interval, TimeObserver observer) override;
    void setEndObserver(std::function<void()> observer) override;
    void setPictureObserver(std::function<void()> observer) override;
    PixelBufferPtr currentPicture() const override { return m_picture; }

private:
    /// One item's way to its player.
    struct Link {
        FfmpegMediaPlayer* player; ///< Null once it has let go of the item; main thread only.
        std::atomic<bool> isTickWaiting = false;
    };

    void load(const PlayerItem& item);
    void letGo();
    void setClock(const PlayerClock& clock, bool isJump);
    PicturePresenter::Observer observerFor(const std::shared_ptr<Link>& link);
    template<class Observer, class... Values>
    static void tell(Observer observer, Values... values);
    void pictureChanged();
    void postTick();
    void tick();
    void endReached();

    const Surroundings m_surroundings;
    std::shared_ptr<Link> m_link; ///< Of the item in the player.
    std::unique_ptr<PlayingItem> m_item;
    PlayerClock m_clock;
    ItemTimeline m_timeline;
    PixelBufferPtr m_picture;
    std::optional<MediaTime> m_interval;
    TimeObserver m_timeObserver;
    std::function<void()> m_endObserver;
    std::function<void()> m_pictureObserver;
};

} // namespace tavi
