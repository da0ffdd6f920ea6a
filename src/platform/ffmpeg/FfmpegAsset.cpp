#include "platform/ffmpeg/FfmpegAsset.h"

#include "base/SystemReason.h"
#include "platform/ffmpeg/AlphaPlane.h"
#include "platform/ffmpeg/FfmpegErrors.h"
#include "platform/ffmpeg/MovieHeader.h"

extern "C" {
#include <libavutil/common.h>
}

#include <algorithm>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace tavi {

namespace {

namespace fs = std::filesystem;

/// Demuxers by the libraries' names. A text that happens to look like a
/// playlist must not make the program open what it lists.
constexpr const char* kContainers = "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,avi,mpegts,apng";

/// Larger pictures are a damaged file's, or nothing that can be shown.
constexpr double kLargestSide = 16384;

std::optional<MediaError> plainFileError(const fs::path& path) {
    using Kind = MediaError::Kind;
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    if (status.type() == fs::file_type::not_found || status.type() == fs::file_type::none) {
        return mediaError(Kind::notFound, path, systemReason(failure ? failure.value() : ENOENT));
    }
    if (fs::is_directory(status)) {
        return mediaError(Kind::notMedia, path, TAVI_TEXT("Errors", "it is a folder"));
    }
    if (::access(path.c_str(), R_OK) != 0) {
        return mediaError(Kind::notFound, path, systemReason(errno));
    }
    if (fs::is_regular_file(status) && fs::file_size(path, failure) == 0) {
        return mediaError(Kind::notMedia, path, TAVI_TEXT("Errors", "it is empty"));
    }
    return std::nullopt;
}

std::string refusalReason(const fs::path& path, int code) {
    const MovieHeader header = readMovieHeader(path);
    if (header.isMovie && !header.hasIndex) {
        return TAVI_TEXT("Errors", "it has no index: it was cut short or is still being written");
    }
    return code == AVERROR(EINVAL) ? TAVI_TEXT("Errors", "its format is not supported")
                                   : ffmpegReason(code);
}

bool isIncomplete(const AVFormatContext& input) {
    if (input.nb_streams == 0) {
        return true;
    }
    return std::any_of(input.streams, input.streams + input.nb_streams, [](const AVStream* s) {
        const AVCodecParameters& codec = *s->codecpar;
        return (codec.codec_type == AVMEDIA_TYPE_VIDEO &&
                (codec.width <= 0 || codec.height <= 0)) ||
               (codec.codec_type == AVMEDIA_TYPE_AUDIO && codec.sample_rate <= 0) ||
               s->duration == AV_NOPTS_VALUE;
    });
}

/// The longest track's end, exact at that track's clock; the library's
/// microseconds where no track knows its length.
MediaTime durationFromTracks(const AVFormatContext& input) {
    MediaTime longest{0, MediaTime::kPreferredTimescale};
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream& stream = *input.streams[i];
        if (stream.duration > 0) {
            const std::int64_t start = stream.start_time == AV_NOPTS_VALUE
                                           ? 0
                                           : std::max<std::int64_t>(stream.start_time, 0);
            longest = std::max(longest, streamTime(start + stream.duration, stream.time_base));
        }
    }
    if (longest.value == 0 && input.duration > 0) {
        longest = MediaTime{input.duration, AV_TIME_BASE};
    }
    return longest;
}

/// Where a track's own description says that it ends; 0 where it says nothing.
MediaTime trackEnd(const AVStream& stream) {
    const bool isKnown = stream.start_time != AV_NOPTS_VALUE && stream.duration > 0;
    return isKnown ? streamTime(av_sat_add64(stream.start_time, stream.duration), stream.time_base)
                   : MediaTime{};
}

} // namespace

bool isReasonable(Size pictureSize) {
    return pictureSize.width >= 1 && pictureSize.height >= 1 && pictureSize.width <= kLargestSide &&
           pictureSize.height <= kLargestSide;
}

MediaTime streamTime(std::int64_t ticks, AVRational timeBase) {
    return {ticks * timeBase.num, timeBase.den};
}

Result<InputHandle, MediaError> openInput(const fs::path& path) {
    silenceFfmpegLog();
    if (const auto error = plainFileError(path)) {
        return fail(*error);
    }
    Options options;
    options.set("protocol_whitelist", "file");
    options.set("format_whitelist", kContainers);
    AVFormatContext* opened = nullptr;
    const int code =
        avformat_open_input(&opened, fileUrl(path).c_str(), nullptr, options.address());
    if (code < 0) {
        return fail(mediaError(MediaError::Kind::notMedia, path, refusalReason(path, code)));
    }
    InputHandle input(opened);
    if (isIncomplete(*input)) {
        avformat_find_stream_info(input.get(), nullptr);
    }
    if (input->nb_streams == 0) {
        return fail(
            mediaError(MediaError::Kind::notMedia, path, TAVI_TEXT("Errors", "it has no tracks")));
    }
    return input;
}

Asset describeAsset(const fs::path& path, const AVFormatContext& input) {
    Asset asset{path, readMovieHeader(path).duration.value_or(MediaTime{}), {}, {}};
    if (asset.duration.value == 0) {
        asset.duration = durationFromTracks(input);
    }
    const auto alpha = alphaTrackOf(input);
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVCodecParameters& codec = *input.streams[i]->codecpar;
        if (std::cmp_equal(i, alpha.value_or(-1))) {
            continue; // Part of the pictures of another.
        }
        if (isPicture(*input.streams[i])) {
            const Size size{static_cast<double>(codec.width), static_cast<double>(codec.height)};
            asset.videoTracks.push_back({static_cast<int>(i), size, trackEnd(*input.streams[i])});
        } else if (codec.codec_type == AVMEDIA_TYPE_AUDIO) {
            asset.audioTracks.push_back(
                {static_cast<int>(i), codec.sample_rate, codec.ch_layout.nb_channels});
        }
    }
    return asset;
}

Result<Asset, MediaError> openFfmpegAsset(const fs::path& path) {
    return openInput(path).map(
        [&](const InputHandle& input) { return describeAsset(path, *input); });
}

} // namespace tavi
