#pragma once

#include "base/MediaTime.h"
#include "platform/ffmpeg/FfmpegHandles.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>

namespace tavi {

/// A picture as it was decoded, usually 4:2:0, on its track's timeline.
struct DecodedPicture {
    MediaTime time;
    std::shared_ptr<const AVFrame> frame;
    std::optional<MediaTime> end; ///< The time of the next one, where it is known before that.
};

/// Decoded pictures of a track that follow each other without a gap; the earliest ones are
/// forgotten when there are too many bytes of them.
///
/// A picture is in force from its time to that of the next one; the first of the track also
/// before, the last one for ever.
/// Thread: one at a time.
class PictureRun {
public:
    /// Forgets all. `isTrackStart`: what is appended next is the track's first picture.
    void restart(bool isTrackStart);

    /// Adds the picture that follows. `needed`: nothing from the picture in force
    /// there on is forgotten.
    void append(DecodedPicture picture, MediaTime needed);

    /// The picture appended last was the track's last.
    void endTrack() { m_isTrackEnd = true; }

    bool isEmpty() const { return m_pictures.empty(); }
    bool isTrackEnd() const { return m_isTrackEnd; }
    MediaTime firstTime() const { return m_pictures.front().time; }
    MediaTime lastTime() const { return m_pictures.back().time; }

    /// The picture in force, when the run tells which it is; else null.
    const DecodedPicture* inForce(MediaTime time) const;

    /// The latest picture of the run at or before `time`, whether or not one follows that
    /// is; null before the run.
    const DecodedPicture* latest(MediaTime time) const;

    /// The first picture of the run after `time`; null when there is none.
    const DecodedPicture* after(MediaTime time) const;

    /// How many pictures of the run come after `time`.
    std::size_t countAfter(MediaTime time) const;

private:
    using Pictures = std::deque<DecodedPicture>;

    Pictures::const_iterator firstAfter(MediaTime time) const;
    bool isBackInForce(MediaTime time) const;

    Pictures m_pictures;
    std::size_t m_bytes = 0;
    bool m_isTrackStart = false; ///< The front is the track's first.
    bool m_isTrackEnd = false;   ///< The back is the track's last.
};

} // namespace tavi
