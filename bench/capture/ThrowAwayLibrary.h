#pragma once

#include "media/ColorConversion.h"
#include "media/MediaLibrary.h"

#include <memory>

namespace tavi::bench {

/// Writers that take every picture at once and keep none: what is left of a recording is
/// what it costs up to its encoder.
class ThrowAwayLibrary final : public MediaLibrary {
public:
    /// With `colours` each picture is converted to 4:2:0 first, as encoders take them.
    explicit ThrowAwayLibrary(std::shared_ptr<const ColorConverter> colours)
        : m_colours(std::move(colours)) {}

    Result<Asset, MediaError> openAsset(const std::filesystem::path& path) override;
    Result<std::unique_ptr<VideoReader>, MediaError>
    makeVideoReader(const Asset& asset, const VideoTrack& track, MediaTimeRange range) override;
    Result<std::unique_ptr<AudioReader>, MediaError>
    makeAudioReader(const Asset& asset, const AudioTrack& track) override;
    Result<std::unique_ptr<AssetWriter>, MediaError> makeWriter(const std::filesystem::path& path,
                                                                FileType type) override;

private:
    std::shared_ptr<const ColorConverter> m_colours;
};

} // namespace tavi::bench
