#pragma once

#include "media/AssetReader.h"
#include "media/AssetWriter.h"

#include <filesystem>
#include <memory>

namespace tavi {

/// Everything the program asks of the machine's media stack. Any thread; the
/// objects that it makes have their own rules.
class MediaLibrary {
public:
    virtual ~MediaLibrary() = default;

    /// Opens a file and reads its duration and tracks.
    virtual Result<Asset, MediaError> openAsset(const std::filesystem::path& path) = 0;

    /// Starts reading one track over one range, decoding from the key frame before it.
    virtual Result<std::unique_ptr<VideoReader>, MediaError>
    makeVideoReader(const Asset& asset, const VideoTrack& track, MediaTimeRange range) = 0;

    /// Starts reading a track of sound from its beginning.
    virtual Result<std::unique_ptr<AudioReader>, MediaError>
    makeAudioReader(const Asset& asset, const AudioTrack& track) = 0;

    /// A writer for a file that does not exist yet or is to be replaced. What
    /// stands at `path` is untouched until the new file is complete (mp4), or
    /// replaced at startWriting() (quickTimeMovie).
    virtual Result<std::unique_ptr<AssetWriter>, MediaError>
    makeWriter(const std::filesystem::path& path, FileType type) = 0;
};

} // namespace tavi
