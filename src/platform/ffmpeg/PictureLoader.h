#pragma once

#include "media/PlayerClock.h"
#include "platform/ffmpeg/ItemTimeline.h"
#include "platform/ffmpeg/PictureRun.h"
#include "platform/ffmpeg/VideoDecoder.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace tavi {

/// What an item shows at some moment.
struct DuePicture {
    /// Unknown: not decoded yet; what is shown stays.
    enum class Kind { unknown, nothing, picture };

    Kind kind = Kind::unknown;
    std::shared_ptr<const AVFrame> frame; ///< With `picture`.
    std::optional<MediaTime> until;       ///< Host time of the next change, where it is known.
};

/// Decodes what a player shows, on a thread of its own: the picture in force where the item
/// stands, and a few ahead while it moves.
///
/// After each decoded picture it looks where it is wanted now, so an older wish is dropped in the
/// middle of a run of pictures. It goes on from where it is when that is nearer than a
/// key frame; decoded pictures around the playhead are kept.
/// Threads: setClock() and stop() from the controlling thread, due() from another; neither waits
/// for decoding. The destructor joins, which takes as long as a picture.
class PictureLoader {
public:
    /// Called on the loader's thread, never with its lock held.
    struct Observer {
        /// Not called for an unreadable file; called again when it turns out where one ends.
        std::function<void(const ItemTimeline&)> opened;
        std::function<void()> changed; ///< Ask due() again.
    };

    PictureLoader(PlayerItem item, PlayerClock clock, Observer observer);
    ~PictureLoader();
    PictureLoader(const PictureLoader&) = delete;
    PictureLoader& operator=(const PictureLoader&) = delete;

    /// Where the item stands from now on. `isJump`: unlike a pause, somewhere else than before.
    void setClock(const PlayerClock& clock, bool isJump);

    /// Ends decoding soon.
    void stop();

    /// What is shown at `now` of the host clock. While it moves and decoding is behind for longer
    /// than kPatience that may be the latest picture before the one in force. While jumps follow
    /// each other so fast that none could be served (a pointer is dragged) it is whatever was
    /// decoded and is nearer to the wanted time than what is shown, key frames above all.
    DuePicture due(MediaTime now);

    /// The track as the file describes it; null while and where there is none. Set before the
    /// first picture is due.
    const AVStream* stream() const;

    static constexpr MediaTime kPatience{1, 10};

private:
    /// How soon one picture follows another in a chase: more than screens show cost time that
    /// decoding lacks.
    static constexpr MediaTime kChasePace{1, 60};

    enum class Step { wait, jump, goOn };

    void run();
    bool open();
    MediaTime wanted(MediaTime now) const;
    Step nextStep(MediaTime time) const;
    bool isNearerByKeyFrame(MediaTime time) const;
    void waitForWork(std::unique_lock<std::mutex>& lock, MediaTime time);
    void jumpTo(std::unique_lock<std::mutex>& lock, MediaTime time);
    void decode(std::unique_lock<std::mutex>& lock, MediaTime time);
    void endTrack(std::unique_lock<std::mutex>& lock);
    void take(AVFrame& picture, MediaTime wantedTime);
    bool isWorthTelling(MediaTime now) const;
    bool isLenient(MediaTime now) const;
    const DecodedPicture* shown(MediaTime trackTime, MediaTime now);
    const DecodedPicture* latestUnlessBack(MediaTime trackTime) const;
    const DecodedPicture* nearerThanShown(MediaTime trackTime) const;

    const PlayerItem m_item;
    const Observer m_observer;
    std::unique_ptr<VideoDecoder> m_decoder; ///< The thread's.
    MediaTime m_jumpedTo;                    ///< The thread's; in the track.

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    // All below by the mutex.
    bool m_isStopping = false;
    bool m_hasTrack = false;
    bool m_isBroken = false; ///< No pictures, now or later.
    ItemTimeline m_timeline;
    PlayerClock m_clock;
    PictureRun m_run;
    bool m_hasArrived = false; ///< What the last jump asked for was known.
    bool m_isAwaited = false;  ///< Nothing of what the last jump asked for was shown.
    bool m_isChased = false;   ///< Jumped again while one was awaited.
    bool m_isGoingBack = false;
    /// Host time of the first jump not served, or of what was shown last.
    MediaTime m_waitingSince;
    DecodedPicture m_latest;              ///< Since a jump that nothing chased; outlives its run.
    std::optional<MediaTime> m_shownTime; ///< In the track; absent while none is shown.

    std::thread m_thread;
};

} // namespace tavi
