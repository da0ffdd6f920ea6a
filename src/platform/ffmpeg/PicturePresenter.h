#pragma once

#include "base/PixelBuffer.h"
#include "media/ColorConversion.h"
#include "media/PixelBufferPool.h"
#include "platform/ffmpeg/DisplayRotation.h"
#include "platform/ffmpeg/PictureLoader.h"
#include "platform/ffmpeg/PixelConversion.h"

namespace tavi {

/// Shows an item's pictures at their moments and tells when it ticks and ends, on a thread of its
/// own that sleeps from one to the next.
///
/// A picture is turned into BGRA only when it is shown, and none while the one before has
/// not been taken: a slow owner sees fewer pictures, not later ones.
/// Threads: the controlling thread; the observer is called on threads of the presenter. The
/// destructor joins, which takes as long as a picture.
class PicturePresenter {
public:
    struct Observer {
        std::function<void(const ItemTimeline&)> opened; ///< As of PictureLoader.
        std::function<void()> picture;                   ///< take() has another one.
        std::function<void()> tick;                      ///< Every interval while it moves.
        std::function<void()> end; ///< Once for each clock that moves to the item's end.
    };

    /// `colours`: see PictureDecoding.
    PicturePresenter(const PlayerItem& item, const PlayerClock& clock,
                     std::shared_ptr<const ColorConverter> colours, Observer observer);
    ~PicturePresenter();
    PicturePresenter(const PicturePresenter&) = delete;
    PicturePresenter& operator=(const PicturePresenter&) = delete;

    /// Where the item stands from now on. `isJump`: see PictureLoader.
    void setClock(const PlayerClock& clock, bool isJump);

    /// Absent: no ticks.
    void setTickInterval(std::optional<MediaTime> interval);

    /// The picture in force; null where there is none.
    PixelBufferPtr take();

    /// Ends soon: nothing is told any more but what is being told.
    void stop();

private:
    using Lock = std::unique_lock<std::mutex>;
    using Deadline = std::optional<MediaTime>; ///< Host time; absent: none.

    void run();
    Deadline tick(Lock& lock, MediaTime now);
    Deadline endOfItem(Lock& lock, MediaTime now);
    Deadline show(Lock& lock, MediaTime now);
    void opened(const ItemTimeline& timeline);
    void wake();
    PixelBufferPtr converted(const AVFrame& frame);

    const Observer m_observer;
    PictureDecoding m_conversion; ///< The thread's, as the next two.
    std::optional<PixelBufferPool> m_pool;
    std::shared_ptr<const AVFrame> m_shownFrame;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    // All below by the mutex.
    bool m_isStopping = false;
    bool m_isWoken = false;
    PlayerClock m_clock;
    std::optional<MediaTime> m_end;
    bool m_isEndTold = false;
    std::optional<MediaTime> m_interval;
    MediaTime m_nextTick; ///< Host time.
    PixelBufferPtr m_picture;
    bool m_isTaken = true;

    PictureLoader m_loader;
    std::thread m_thread;
};

} // namespace tavi
