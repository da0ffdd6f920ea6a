#pragma once

#include "base/AudioBuffer.h"
#include "base/Geometry.h"
#include "base/MediaTime.h"
#include "base/PixelBuffer.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace tavi {

/// The first facts of one track of pictures.
struct VideoTrack {
    int index = 0;    ///< Position among the file's streams.
    Size naturalSize; ///< Coded size in pixels, before any rotation tag.
    MediaTime end;    ///< When its last picture ends, on the movie's timeline; 0 where unknown.
};

/// The first facts of one track of sound.
struct AudioTrack {
    int index = 0;      ///< Position among the file's streams.
    int sampleRate = 0; ///< Hz.
    int channels = 0;
};

/// A media file that was opened and looked at.
struct Asset {
    std::filesystem::path path;
    MediaTime duration; ///< The container's duration, at the container's own timescale.
    std::vector<VideoTrack> videoTracks;
    std::vector<AudioTrack> audioTracks;
};

/// One decoded picture of a track.
struct VideoSample {
    MediaTime presentationTime; ///< On the movie's timeline, edit lists applied.
    PixelBufferPtr image;       ///< Absent for a sample that has a time but no picture.
};

/// A piece of the sound of a track.
struct AudioSample {
    MediaTime presentationTime; ///< Of its first moment, on the movie's timeline.
    AudioBufferPtr buffer;      ///< Not null.
};

enum class AssetReaderStatus { unknown = 0, reading = 1, completed = 2, failed = 3, cancelled = 4 };

/// Decodes one video track over one stretch of time, one picture at a time, in
/// order of presentation.
///
/// The first sample is the picture in force at the start of the range: the
/// latest one whose time is at or before it, else the first after it. Samples
/// at or after the end of the range are not given.
/// Threads: one caller at a time; the adapter may decode ahead on its own.
class VideoReader {
public:
    virtual ~VideoReader() = default;

    /// The next picture, absent at the end of the range, after a failure and
    /// after cancelReading(); status() tells which.
    virtual std::optional<VideoSample> copyNextSample() = 0;

    virtual AssetReaderStatus status() const = 0;

    /// Ends reading early.
    virtual void cancelReading() = 0;
};

/// Decodes one track of sound from its beginning to its end, in buffers of
/// kFramesPerBuffer moments (the last one and one before a gap may be shorter), at
/// the rate and with the channels of the source, in order of time and without
/// overlap. A gap in the file, also one left by a damaged stretch, stays one: the
/// next buffer's time is later than the end of the one before. What the encoder put
/// in front of the sound (priming) and behind it (padding), what an edit list hides
/// and what lies before the movie's zero is left out.
/// Threads: one caller at a time; the adapter may decode ahead on its own.
class AudioReader {
public:
    static constexpr int kFramesPerBuffer = 1024;

    virtual ~AudioReader() = default;

    /// The next piece, absent at the end, after a failure and after
    /// cancelReading(); status() tells which.
    virtual std::optional<AudioSample> copyNextSample() = 0;

    virtual AssetReaderStatus status() const = 0;

    /// Ends reading early.
    virtual void cancelReading() = 0;
};

} // namespace tavi
