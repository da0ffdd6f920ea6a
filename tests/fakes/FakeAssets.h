#pragma once

#include "media/MediaLibrary.h"

#include <map>
#include <optional>
#include <string>

namespace tavi {

/// A media stack that knows assets by their file's name, and reads and writes nothing.
class FakeAssets final : public MediaLibrary {
public:
    /// An asset with one video track, or none.
    static Asset asset(double seconds, std::optional<Size> size) {
        Asset made;
        made.duration = MediaTime::fromSeconds(seconds, MediaTime::kNanoseconds);
        if (size) {
            made.videoTracks.push_back({0, *size, made.duration});
        }
        return made;
    }

    Result<Asset, MediaError> openAsset(const std::filesystem::path& path) override {
        const auto found = known.find(path.filename().string());
        if (found == known.end()) {
            return fail(MediaError{MediaError::Kind::notFound, path.string(), ""});
        }
        Asset asset = found->second;
        asset.path = path;
        return asset;
    }
    Result<std::unique_ptr<VideoReader>, MediaError>
    makeVideoReader(const Asset&, const VideoTrack&, MediaTimeRange) override {
        return fail(MediaError{});
    }
    Result<std::unique_ptr<AudioReader>, MediaError> makeAudioReader(const Asset&,
                                                                     const AudioTrack&) override {
        return fail(MediaError{});
    }
    Result<std::unique_ptr<AssetWriter>, MediaError> makeWriter(const std::filesystem::path&,
                                                                FileType) override {
        return fail(MediaError{});
    }

    std::map<std::string, Asset> known;
};

} // namespace tavi
