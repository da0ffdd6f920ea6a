#pragma once

#include "media/MediaLibrary.h"
#include "project/EditProject.h"
#include "project/TrimState.h"

#include <memory>
#include <optional>

namespace tavi {

/// The camera film of the take in `folder`; absent where the project shows no
/// camera, and where there is none that can be opened.
std::optional<Asset> openCamera(MediaLibrary& media, const EditProject& project,
                                const std::filesystem::path& folder);

/// The camera's frame in force while source time runs forward over one kept
/// range. The camera's own zero lies the take's `cameraStartDelay` after the
/// video's; from there on both have the same clock.
///
/// Failures: none; a camera that can't be read shows nothing.
/// Threads: one at a time.
class CameraFrames {
public:
    /// Shows nothing.
    CameraFrames() = default;

    /// Begins to read what falls into `range`, in seconds of source time, from
    /// the moment `from` of it on. `startDelay` is in seconds.
    CameraFrames(MediaLibrary& media, const Asset& camera, double startDelay,
                 const TimeRange& range, double from);

    /// Moves on to `sourceTime` in seconds, which does not decrease.
    ///
    /// Kept on purpose: reads up to the first frame at or after that moment, so
    /// the camera is ahead by up to one of its frames, and stands with its first
    /// one before the camera had started.
    void advance(double sourceTime);

    /// The picture in force; null where there is none.
    const PixelBufferPtr& current() const { return m_current; }

private:
    std::unique_ptr<VideoReader> m_reader;
    MediaTime m_delay;
    std::optional<double> m_lastTime; ///< Of the picture in force, source seconds.
    PixelBufferPtr m_current;
};

} // namespace tavi
