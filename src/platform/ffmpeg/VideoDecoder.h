#pragma once

#include "base/MediaTime.h"
#include "base/Result.h"
#include "media/MediaError.h"
#include "platform/ffmpeg/TrackDecoder.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace tavi {

class AlphaFollower;

/// The pictures of one track of a file in order of presentation, from any time on. Those
/// of a track with alpha have it (see hasJoinedAlpha()).
///
/// Thread: one at a time; decodes on several threads of its own.
class VideoDecoder {
public:
    /// `track` is the stream's index in the file.
    /// Errors: notFound, notMedia, noVideoTrack, cannotDecode.
    static Result<std::unique_ptr<VideoDecoder>, MediaError>
    open(const std::filesystem::path& path, int track, DecoderUse use = DecoderUse::stretch);

    ~VideoDecoder();

    /// Goes to a key frame from which every picture from `time` on can be
    /// decoded: the first one given is at or before `time`, unless the track
    /// begins later.
    void seek(MediaTime time);

    /// Until the next seek(): pictures before the one in force at `time` may be left out where
    /// nothing else is made of them.
    void hurryTo(MediaTime time);

    /// The time of the latest picture since the last seek() that was left out for the hurry.
    std::optional<MediaTime> lastHurriedOver() const;

    /// The latest key frame that the file's index knows at or before `time`, by the order of
    /// decoding; absent where it knows none.
    std::optional<MediaTime> keyFrameBefore(MediaTime time) const;

    /// The next picture, valid until the next call; null at the end of the
    /// track and when the rest can't be read (error() tells). Damaged stretches
    /// are skipped.
    AVFrame* next();

    /// Of the picture that next() gave last, on the movie's timeline.
    MediaTime time() const { return m_time; }

    /// The time of the picture after that one, or of one that is left out before it (a damaged
    /// one, say), where the file's index has every picture once, in order and at its time; else
    /// absent.
    std::optional<MediaTime> timeOfNext() const;

    /// Why nothing could be read to the end; absent after a whole reading.
    const std::optional<MediaError>& error() const { return m_track.error(); }

    /// The track as the file describes it.
    const AVStream& stream() const { return m_track.stream(); }
    const AVFormatContext& input() const { return m_track.input(); }

private:
    VideoDecoder();

    AVFrame* decodeNext();
    std::int64_t ticksOf(MediaTime time) const;

    TrackDecoder m_track;
    std::unique_ptr<AlphaFollower> m_alpha; ///< Null without.
    FrameHandle m_frame{av_frame_alloc()};
    MediaTime m_time;
    bool m_isIndexInOrder = false;
    bool m_isPeeked = false; ///< m_frame was decoded by seek() and not yet given.
};

} // namespace tavi
