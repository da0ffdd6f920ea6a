#include "platform/ffmpeg/FfmpegMediaLibrary.h"

#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/FfmpegAssetWriter.h"
#include "platform/ffmpeg/FfmpegAudioReader.h"
#include "platform/ffmpeg/FfmpegErrors.h"
#include "platform/ffmpeg/FfmpegVideoReader.h"

#include <utility>

namespace tavi {

namespace {

/// No sound has more; what claims to is damaged.
constexpr int kHighestRate = 768'000;
constexpr int kMostChannels = 64;

bool isReasonable(const AudioTrack& track) {
    return track.sampleRate > 0 && track.sampleRate <= kHighestRate && track.channels > 0 &&
           track.channels <= kMostChannels;
}

} // namespace

FfmpegMediaLibrary::FfmpegMediaLibrary(std::shared_ptr<const ColorConverter> colours)
    : m_colours(std::move(colours)) {
    silenceFfmpegLog();
}

Result<Asset, MediaError> FfmpegMediaLibrary::openAsset(const std::filesystem::path& path) {
    return openFfmpegAsset(path);
}

Result<std::unique_ptr<VideoReader>, MediaError>
FfmpegMediaLibrary::makeVideoReader(const Asset& asset, const VideoTrack& track,
                                    MediaTimeRange range) {
    const Size size = track.naturalSize;
    if (!isReasonable(size)) {
        return fail(mediaError(MediaError::Kind::cannotDecode, asset.path,
                               TAVI_TEXT("Errors", "its picture size is out of bounds")));
    }
    auto decoder = VideoDecoder::open(asset.path, track.index);
    if (!decoder) {
        return fail(decoder.error());
    }
    return std::make_unique<FfmpegVideoReader>(std::move(*decoder), range,
                                               static_cast<int>(size.width),
                                               static_cast<int>(size.height), m_colours);
}

Result<std::unique_ptr<AudioReader>, MediaError>
FfmpegMediaLibrary::makeAudioReader(const Asset& asset, const AudioTrack& track) {
    if (!isReasonable(track)) {
        return fail(mediaError(
            MediaError::Kind::cannotDecode, asset.path,
            TAVI_TEXT("Errors", "its sound's rate or number of channels is out of bounds")));
    }
    auto decoder = AudioDecoder::open(asset.path, track.index, track.sampleRate, track.channels);
    if (!decoder) {
        return fail(decoder.error());
    }
    return std::make_unique<FfmpegAudioReader>(std::move(*decoder), track.sampleRate,
                                               track.channels);
}

Result<std::unique_ptr<AssetWriter>, MediaError>
FfmpegMediaLibrary::makeWriter(const std::filesystem::path& path, FileType type) {
    return std::make_unique<FfmpegAssetWriter>(path, type, EncoderChoice::shared(), m_colours);
}

} // namespace tavi
