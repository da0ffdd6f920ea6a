#include "platform/ffmpeg/FfmpegErrors.h"

#include "base/SystemReason.h"

#include <cerrno>
#include <mutex>
#include <utility>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

namespace tavi {

namespace {

/// The library's own codes are made of four letters and lie far above.
constexpr int kLargestErrno = 4095;

} // namespace

void silenceFfmpegLog() {
    static std::once_flag once;
    std::call_once(once, [] {
        av_log_set_level(AV_LOG_QUIET);
        av_log_set_callback([](void*, int, const char*, va_list) {});
    });
}

std::string ffmpegReason(int code) {
    if (code == AVERROR_INVALIDDATA) {
        return TAVI_TEXT("Errors", "Invalid data found when processing input");
    }
    if (const int system = AVUNERROR(code); system > 0 && system <= kLargestErrno) {
        return systemReason(system);
    }
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

MediaError mediaError(MediaError::Kind kind, const std::filesystem::path& file,
                      std::string reason) {
    return {kind, file.string(), std::move(reason)};
}

MediaError writeError(const std::filesystem::path& file, int code) {
    const bool full = code == AVERROR(ENOSPC) || code == AVERROR(EDQUOT);
    return mediaError(full ? MediaError::Kind::diskFull : MediaError::Kind::cannotWrite, file,
                      ffmpegReason(code));
}

std::string fileUrl(const std::filesystem::path& file) {
    return "file:" + file.string();
}

} // namespace tavi
