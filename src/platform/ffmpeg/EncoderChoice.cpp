#include "platform/ffmpeg/EncoderChoice.h"

#include "media/VideoLimits.h"
#include "platform/ffmpeg/FfmpegErrors.h"

#include <algorithm>
#include <cstring>

namespace tavi {

namespace {

/// As many pictures as show that packets keep coming.
constexpr int kTrialPictures = 3;

/// Software takes every size alike, so it is tried on a small picture.
constexpr int kSoftwareTrialWidth = 320;
constexpr int kSoftwareTrialHeight = 192;

/// Devices differ in the sizes that they take: very small ones, and those
/// beyond 2K, 4K and 8K.
int sizeClass(const VideoSettings& settings) {
    const int longest = std::max(settings.width, settings.height);
    if (std::min(settings.width, settings.height) < 256) {
        return 0;
    }
    return longest <= 2048 ? 1 : longest <= 4096 ? 2 : longest <= 8192 ? 3 : 4;
}

bool isEncodable(const VideoSettings& settings) {
    return std::min(settings.width, settings.height) >= kSmallestVideoSide &&
           settings.width % 2 == 0 && settings.height % 2 == 0;
}

void drawTrial(PixelBuffer& picture, int number) {
    for (int y = 0; y < picture.height(); ++y) {
        std::memset(picture.row(y), (y + 40 * number) & 255, picture.stride());
    }
}

/// Why the encoder fails at these settings; empty when it works.
std::string failureOf(const EncoderKind& kind, VideoSettings settings) {
    if (!kind.isHardware) {
        settings.width = kSoftwareTrialWidth;
        settings.height = kSoftwareTrialHeight;
    }
    auto encoder = VideoEncoder::open(kind, settings, settings.expectedFrameRate, nullptr);
    if (!encoder) {
        return encoder.error();
    }
    int packets = 0;
    const VideoEncoder::Sink sink = [&packets](const AVPacket& packet) {
        packets += packet.size > 0 ? 1 : 0;
        return 0;
    };
    PixelBuffer picture(settings.width, settings.height);
    int code = 0;
    for (int i = 0; i < kTrialPictures && code >= 0; ++i) {
        drawTrial(picture, i);
        const FrameHandle frame = (*encoder)->convert(picture);
        code = frame ? (*encoder)->encode(*frame, i, sink) : AVERROR(ENOMEM);
    }
    if (code >= 0) {
        code = (*encoder)->drain(sink);
    }
    if (code < 0) {
        return ffmpegReason(code);
    }
    return packets == kTrialPictures ? std::string() : "it lost pictures";
}

} // namespace

EncoderChoice& EncoderChoice::shared() {
    static EncoderChoice choice;
    return choice;
}

const EncoderTrial& EncoderChoice::trial(const EncoderKind& kind, const VideoSettings& settings) {
    const Work work{settings.codec, sizeClass(settings), settings.realTime};
    const auto key = std::pair(std::string(kind.name), work);
    const std::lock_guard lock(m_mutex);
    auto found = m_trials.find(key);
    if (found == m_trials.end()) {
        const std::string reason = failureOf(kind, settings);
        const EncoderTrial result{kind.name, kind.isHardware, reason.empty(), reason};
        found = m_trials.emplace(key, result).first;
    }
    return found->second;
}

Result<std::unique_ptr<VideoEncoder>, MediaError>
EncoderChoice::open(const VideoSettings& settings, int timescale,
                    const std::shared_ptr<const ColorConverter>& colours, PictureContent content) {
    if (!isEncodable(settings)) {
        const std::string reason =
            TAVI_TEXT("Errors", "width and height must be even and at least 16 pixels");
        return fail(MediaError{MediaError::Kind::cannotEncode, {}, reason});
    }
    std::string reason = "none is known";
    for (const EncoderKind& kind : encoderKinds(settings.codec)) {
        const EncoderTrial& tried = trial(kind, settings);
        if (!tried.works) {
            reason = tried.name + ": " + tried.reason;
            continue;
        }
        auto encoder = VideoEncoder::open(kind, settings, timescale, colours, content);
        if (encoder) {
            return std::move(*encoder);
        }
        reason = tried.name + ": " + encoder.error();
    }
    return fail(MediaError{MediaError::Kind::noEncoder, {}, reason});
}

std::vector<EncoderTrial> EncoderChoice::report(const VideoSettings& settings) {
    std::vector<EncoderTrial> trials;
    for (const EncoderKind& kind : encoderKinds(settings.codec)) {
        trials.push_back(trial(kind, settings));
    }
    return trials;
}

} // namespace tavi
