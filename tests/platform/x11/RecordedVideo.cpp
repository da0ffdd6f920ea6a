#include "platform/x11/RecordedVideo.h"

#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "render/YuvConverter.h"

namespace tavi::test {

std::vector<VideoSample> readAll(const std::filesystem::path& video) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    const auto asset = media.openAsset(video);
    if (!asset || asset->videoTracks.empty()) {
        return {};
    }
    auto reader = media.makeVideoReader(*asset, asset->videoTracks[0], {{0, 1}, asset->duration});
    std::vector<VideoSample> samples;
    while (auto sample = (*reader)->copyNextSample()) {
        samples.push_back(std::move(*sample));
    }
    return samples;
}

} // namespace tavi::test
