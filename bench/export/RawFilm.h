#pragma once

#include "media/MediaLibrary.h"

#include <cstdio>
#include <memory>

namespace tavi::bench {

/// A media stack whose writer keeps the finished pictures of an export as raw
/// 4:2:0 samples, one after the other, and drops the sound. Reading is `media`'s.
class RawFilmLibrary final : public MediaLibrary {
public:
    explicit RawFilmLibrary(MediaLibrary& media) : m_media(media) {}

    Result<Asset, MediaError> openAsset(const std::filesystem::path& path) override {
        auto asset = m_media.openAsset(path);
        if (asset) {
            asset->audioTracks.clear();
        }
        return asset;
    }
    Result<std::unique_ptr<VideoReader>, MediaError>
    makeVideoReader(const Asset& asset, const VideoTrack& track, MediaTimeRange range) override {
        return m_media.makeVideoReader(asset, track, range);
    }
    Result<std::unique_ptr<AudioReader>, MediaError>
    makeAudioReader(const Asset& asset, const AudioTrack& track) override {
        return m_media.makeAudioReader(asset, track);
    }
    Result<std::unique_ptr<AssetWriter>, MediaError> makeWriter(const std::filesystem::path& path,
                                                                FileType type) override;

private:
    MediaLibrary& m_media;
};

} // namespace tavi::bench
