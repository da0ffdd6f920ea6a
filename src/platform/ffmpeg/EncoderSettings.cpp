#include "platform/ffmpeg/EncoderSettings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <thread>

namespace tavi {

namespace {

constexpr std::array kHevc{
    EncoderKind{"hevc_nvenc", AV_PIX_FMT_NV12, AV_HWDEVICE_TYPE_NONE, true},
    EncoderKind{"hevc_qsv", AV_PIX_FMT_NV12, AV_HWDEVICE_TYPE_NONE, true},
    EncoderKind{"hevc_vaapi", AV_PIX_FMT_NV12, AV_HWDEVICE_TYPE_VAAPI, true},
    EncoderKind{"libx265", AV_PIX_FMT_YUV420P, AV_HWDEVICE_TYPE_NONE, false},
};

constexpr std::array kH264{
    EncoderKind{"h264_nvenc", AV_PIX_FMT_NV12, AV_HWDEVICE_TYPE_NONE, true},
    EncoderKind{"h264_qsv", AV_PIX_FMT_NV12, AV_HWDEVICE_TYPE_NONE, true},
    EncoderKind{"h264_vaapi", AV_PIX_FMT_NV12, AV_HWDEVICE_TYPE_VAAPI, true},
    EncoderKind{"libx264", AV_PIX_FMT_YUV420P, AV_HWDEVICE_TYPE_NONE, false},
};

/// Between key frames, in seconds, at most: a busy recording asks for more (KeyFrameSpacing).
constexpr double kLiveKeyFrames = 0.6;
constexpr double kFilmKeyFrames = 2;

/// The peak over the average: room for a window that opens.
constexpr double kPeakFactor = 1.5;

/// Finer steps than this can't be seen on a screen: an average rate that a
/// still picture does not need is then left unused.
constexpr int kFinestQuantizer = 12;

/// libx265's rate factor of recordings: text stays crisp when it is zoomed into, and a standing
/// screen costs next to nothing.
constexpr std::int64_t kLiveQuality = 22;

/// Pixels; pictures are no smaller than a block. What stands still is decoded sooner in large ones.
constexpr int kLargestBlock = 64;

/// More threads than this only wait for each other within one picture.
constexpr unsigned kMostPoolThreads = 16;

unsigned poolThreads() {
    return std::clamp(std::thread::hardware_concurrency(), 1U, kMostPoolThreads);
}

/// What an encoder of films keeps in memory to look at.
struct LookAhead {
    int bidirectional = 3; ///< Pictures between two that others refer to.
    int pictures = 10;
};

/// From here on every picture in memory counts: 35 MB each at 4K.
constexpr std::int64_t kLargePicture = std::int64_t{3840} * 2160;

LookAhead lookAheadFor(const VideoSettings& settings) {
    const bool isLarge = std::int64_t{settings.width} * settings.height >= kLargePicture;
    return isLarge ? LookAhead{1, 2} : LookAhead{};
}

/// Live: one picture at a time, no look-ahead, the cheapest decisions; the bit rate is a limit,
/// which a screen seldom needs. Films:
/// what gave text the most for its time (docs/encoding.md), the quickest preset
/// for drafts; pictures overlap so that every core has work.
void configureX265(AVCodecContext& context, Options& options, const VideoSettings& settings) {
    std::string parameters =
        fmt::format("log-level=none:scenecut=0:open-gop=0:keyint={0}:min-keyint={0}:pools={1}:"
                    "qpmin={2}:aq-mode=0",
                    context.gop_size, poolThreads(), kFinestQuantizer);
    if (settings.realTime) {
        context.bit_rate = 0; // Else it is an average to be used up.
        context.rc_max_rate = settings.bitRate;
        options.set("crf", kLiveQuality);
        options.set("forced-idr", std::int64_t{1});
        // qcomp, ipratio: the same quality in every picture, also in and right after a key frame.
        parameters += ":qcomp=1.0:ipratio=1.0:bframes=0:early-skip=1:fast-intra=1:frame-threads=1:"
                      "ref=1:rc-lookahead=0:tu-intra-depth=3";
        if (std::min(settings.width, settings.height) >= kLargestBlock) {
            parameters += fmt::format(":ctu={}", kLargestBlock);
        }
        options.set("preset", "ultrafast");
        options.set("tune", "zerolatency");
    } else {
        const LookAhead ahead = lookAheadFor(settings);
        context.max_b_frames = ahead.bidirectional;
        parameters += fmt::format(":bframes={}:b-adapt=0:frame-threads=2:rc-lookahead={}:"
                                  "lookahead-slices=0",
                                  ahead.bidirectional, ahead.pictures);
        options.set("preset", settings.isDraft ? "ultrafast" : "veryfast");
    }
    options.set("x265-params", parameters.c_str());
}

void configureX264(Options& options, const VideoSettings& settings) {
    options.set("preset", settings.realTime ? "ultrafast" : "veryfast");
    if (settings.realTime) {
        options.set("tune", "zerolatency");
    }
    options.set("forced-idr", std::int64_t{1});
    options.set("x264-params", "scenecut=0");
}

void configureNvenc(Options& options, const VideoSettings& settings) {
    options.set("preset", settings.realTime ? "p2" : "p5");
    options.set("tune", settings.realTime ? "ull" : "hq");
    options.set("rc", "vbr");
    options.set("delay", std::int64_t{0});
    options.set("forced-idr", std::int64_t{1});
}

void configureQsv(Options& options, const VideoSettings& settings) {
    options.set("preset", settings.realTime ? "veryfast" : "medium");
    options.set("async_depth", std::int64_t{settings.realTime ? 1 : 4});
    options.set("forced_idr", std::int64_t{1});
}

void configureVaapi(Options& options, const VideoSettings& settings) {
    options.set("rc_mode", "VBR");
    if (settings.realTime) {
        options.set("async_depth", std::int64_t{1});
    }
}

void setColour(AVCodecContext& context) {
    context.color_range = AVCOL_RANGE_MPEG;
    context.color_primaries = AVCOL_PRI_BT709;
    context.color_trc = AVCOL_TRC_BT709;
    context.colorspace = AVCOL_SPC_BT709;
    context.chroma_sample_location = AVCHROMA_LOC_LEFT;
    context.sample_aspect_ratio = {1, 1};
}

} // namespace

std::span<const EncoderKind> encoderKinds(VideoCodec codec) {
    return codec == VideoCodec::hevc ? std::span<const EncoderKind>(kHevc) : kH264;
}

void configureEncoder(AVCodecContext& context, Options& options, const EncoderKind& kind,
                      const VideoSettings& settings, int timescale) {
    const int rate = std::max(settings.expectedFrameRate, 1);
    context.width = settings.width;
    context.height = settings.height;
    context.pix_fmt = kind.input;
    context.time_base = {1, timescale};
    context.framerate = {rate, 1};
    context.bit_rate = settings.bitRate;
    context.rc_max_rate =
        static_cast<std::int64_t>(static_cast<double>(settings.bitRate) * kPeakFactor);
    context.rc_buffer_size = static_cast<int>(std::min<std::int64_t>(settings.bitRate, 1 << 30));
    const double keyFrames = settings.realTime ? kLiveKeyFrames : kFilmKeyFrames;
    context.gop_size = std::max(static_cast<int>(rate * keyFrames), 1);
    context.max_b_frames = 0;
    context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (settings.codec == VideoCodec::hevc) {
        context.codec_tag = MKTAG('h', 'v', 'c', '1');
    }
    setColour(context);
    const std::string_view name = kind.name;
    if (name == "libx265") {
        configureX265(context, options, settings);
    } else if (name == "libx264") {
        context.qmin = kFinestQuantizer;
        configureX264(options, settings);
    } else if (name.ends_with("_nvenc")) {
        configureNvenc(options, settings);
    } else if (name.ends_with("_qsv")) {
        configureQsv(options, settings);
    } else {
        configureVaapi(options, settings);
    }
}

} // namespace tavi
