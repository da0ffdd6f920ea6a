#pragma once

#include "media/ColorConversion.h"
#include "media/MediaLibrary.h"
#include "platform/ffmpeg/EncoderChoice.h"

namespace tavi {

/// The media stack over the FFmpeg libraries. Nothing that they print reaches
/// standard error.
class FfmpegMediaLibrary final : public MediaLibrary {
public:
    /// `colours` converts the pictures of the usual kinds; null leaves all of them
    /// to the scaling library.
    explicit FfmpegMediaLibrary(std::shared_ptr<const ColorConverter> colours);

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

} // namespace tavi
