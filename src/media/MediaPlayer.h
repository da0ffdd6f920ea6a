#pragma once

#include "base/MediaTime.h"
#include "base/PixelBuffer.h"
#include "media/AssetReader.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace tavi {

/// One video track that is put on an item's timeline later than it stands in its file.
struct DelayedTrack {
    VideoTrack track;
    MediaTime duration; ///< How much of the track is played, from its zero on.
    MediaTime start;    ///< Where its zero lies on the item's timeline; there is no picture before.
};

/// What a player plays: a whole file, or one delayed track of it without sound.
struct PlayerItem {
    std::filesystem::path path;
    std::optional<DelayedTrack> delayedTrack;
};

/// Plays one item: sound through the machine's output, pictures for its owner to show.
///
/// Item times run on the movie's timeline. Every seek is exact: what is shown is
/// the picture in force at the time asked for. While seeks come faster than
/// pictures can be decoded, the newest wins and older ones are dropped; meanwhile pictures on the
/// way there are shown, each nearer to the time asked for than the one before it.
/// A file that can't be read has no picture, no sound and no end.
/// Threads: main only; nothing here waits for decoding. Observers are called on the main
/// thread, never from inside an operation, and not after the player is gone.
class MediaPlayer {
public:
    using TimeObserver = std::function<void(MediaTime)>;

    virtual ~MediaPlayer() = default;

    /// Plays another item from now on, paused at time 0.
    virtual void replaceCurrentItem(const PlayerItem& item) = 0;

    /// Where the item stands: after a seek its target, at once; while it plays it moves with the
    /// host clock. Limited to the item's length where that is known.
    virtual MediaTime currentTime() const = 0;

    /// Goes to `time`; while it plays it plays on from there.
    virtual void seek(MediaTime time) = 0;

    /// Plays at `rate` so that item time `time` is shown and heard at `hostTime` of the host
    /// clock. Never waits for more media: what isn't decoded by then is skipped.
    virtual void setRate(double rate, MediaTime time, MediaTime hostTime) = 0;

    /// Stands still where it is.
    virtual void pause() = 0;

    /// Called every `interval` while the item plays, and after each seek, with
    /// the item's time. Replaces the one before; an empty one ends it.
    virtual void setPeriodicTimeObserver(MediaTime interval, TimeObserver observer) = 0;

    /// Called when the item has played to its end.
    virtual void setEndObserver(std::function<void()> observer) = 0;

    /// Called when currentPicture() is another one.
    virtual void setPictureObserver(std::function<void()> observer) = 0;

    /// The picture in force; null before the first is decoded and where there is none.
    virtual PixelBufferPtr currentPicture() const = 0;
};

/// Makes players.
class MediaPlayers {
public:
    virtual ~MediaPlayers() = default;

    /// A player that stands at time 0 of `item`, which is loaded in the background. Never null.
    virtual std::unique_ptr<MediaPlayer> makePlayer(const PlayerItem& item) = 0;
};

} // namespace tavi
