#pragma once

#include "platform/ffmpeg/VideoEncoder.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

namespace tavi {

/// What became of trying one encoder.
struct EncoderTrial {
    std::string name; ///< The library's name for it.
    bool isHardware = false;
    bool works = false;
    std::string reason; ///< Why it doesn't work; empty when it does.

    bool operator==(const EncoderTrial&) const = default;
};

/// Which encoder this machine takes for which work. An encoder counts as
/// working only after it turned real pictures into packets: a driver that
/// merely opens is not enough.
///
/// Each kind of work (codec, class of size, live or not) is tried once per
/// process. Threads: any.
class EncoderChoice {
public:
    /// The one of this process.
    static EncoderChoice& shared();

    /// Opens the first encoder that works for `settings`. `colours`: see PictureEncoding.
    /// Errors: noEncoder, with the reason of the last one tried; cannotEncode for odd sides, and
    /// for those below kSmallestVideoSide.
    Result<std::unique_ptr<VideoEncoder>, MediaError>
    open(const VideoSettings& settings, int timescale,
         const std::shared_ptr<const ColorConverter>& colours,
         PictureContent content = PictureContent::colours);

    /// The result of every encoder that is known for the codec, in the order of
    /// preference, each of them tried.
    std::vector<EncoderTrial> report(const VideoSettings& settings);

private:
    using Work = std::tuple<VideoCodec, int, bool>;

    const EncoderTrial& trial(const EncoderKind& kind, const VideoSettings& settings);

    std::mutex m_mutex;
    std::map<std::pair<std::string, Work>, EncoderTrial> m_trials;
};

} // namespace tavi
