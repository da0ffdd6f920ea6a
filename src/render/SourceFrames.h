#pragma once

#include "media/AssetReader.h"

#include <memory>
#include <optional>

namespace tavi {

/// When the last picture of a video ends, in seconds. The asset has a track of it.
double endOfVideo(const Asset& asset);

/// The source frame in force while time runs forward over one range.
///
/// The first frame of the range stands from its beginning, whatever its time;
/// later ones stand from their own time on, the last one to the range's end.
/// Threads: one at a time.
class SourceFrames {
public:
    /// Reads the first two samples.
    explicit SourceFrames(std::unique_ptr<VideoReader> reader);

    /// Moves on to `sourceTime` in seconds, which does not decrease. A sample
    /// without a picture leaves the one before it in force.
    void advance(double sourceTime);

    /// The picture in force; null where the range has none. It stays the same
    /// object while what the source shows stays the same.
    const PixelBufferPtr& current() const { return m_current; }

    VideoReader& reader() { return *m_reader; }

private:
    void take();

    std::unique_ptr<VideoReader> m_reader;
    PixelBufferPtr m_current;
    std::optional<VideoSample> m_next; ///< Absent once the source is exhausted.
};

} // namespace tavi
