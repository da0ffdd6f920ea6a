#include "render/CameraFrames.h"

#include "project/RecordingFolder.h"

#include <algorithm>
#include <cmath>

namespace tavi {

std::optional<Asset> openCamera(MediaLibrary& media, const EditProject& project,
                                const std::filesystem::path& folder) {
    if (!project.cameraSettings.enabled) {
        return std::nullopt;
    }
    auto camera = media.openAsset(folder / take::kCamera);
    if (!camera || camera->videoTracks.empty()) {
        return std::nullopt;
    }
    return *std::move(camera);
}

CameraFrames::CameraFrames(MediaLibrary& media, const Asset& camera, double startDelay,
                           const TimeRange& range, double from)
    : m_delay(MediaTime::fromSeconds(startDelay)) {
    const double delay = m_delay.seconds();
    const bool isPlaceable = startDelay >= 0 && std::isfinite(startDelay);
    const bool isInRange = range.end > delay && range.start < delay + camera.duration.seconds();
    if (!isPlaceable || !isInRange) {
        return;
    }
    const auto start = MediaTime::fromSeconds(std::max(from - delay, 0.0), MediaTime::kNanoseconds);
    const auto end = MediaTime::fromSeconds(range.end - delay, MediaTime::kNanoseconds);
    auto reader = media.makeVideoReader(camera, camera.videoTracks.front(), {start, end - start});
    if (reader) {
        m_reader = *std::move(reader);
    }
}

void CameraFrames::advance(double sourceTime) {
    while (m_reader && !(m_lastTime && *m_lastTime >= sourceTime)) {
        std::optional<VideoSample> sample = m_reader->copyNextSample();
        if (!sample) {
            m_reader.reset();
            return;
        }
        const double time = (sample->presentationTime + m_delay).seconds();
        if (sample->image) {
            m_current = std::move(sample->image);
            m_lastTime = time;
        }
        if (time >= sourceTime) {
            return;
        }
    }
}

} // namespace tavi
