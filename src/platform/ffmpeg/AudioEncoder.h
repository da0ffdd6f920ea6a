#pragma once

#include "base/Result.h"
#include "media/AssetWriter.h"
#include "platform/ffmpeg/FfmpegHandles.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tavi {

/// The AAC encoder at work: floats in, packets out. Packet times count moments
/// from the first one encoded; the first packets lie before 0, by context().initial_padding
/// moments that the decoder throws away.
///
/// Thread: one at a time. Errors are the library's words.
class AudioEncoder {
public:
    /// Takes each packet as it comes; a negative library code from it ends the encoding.
    using Sink = std::function<int(AVPacket&)>;

    static Result<std::unique_ptr<AudioEncoder>, std::string> open(const AudioSettings& settings);

    /// Encodes interleaved sound of the track's rate and channels that follows what
    /// came before. What is no number counts as silence, what is beyond full scale as full scale.
    /// Returns what the sink or the library said, 0 for success.
    int encode(std::span<const float> samples, const Sink& sink);

    /// Gives the sink the packets that are still inside. Nothing can be encoded after it.
    int drain(const Sink& sink);

    const AVCodecContext& context() const { return *m_codec; }

private:
    AudioEncoder() = default;

    int sendFrame(std::span<const float> samples, const Sink& sink);
    int send(const AVFrame* frame, const Sink& sink);

    CodecHandle m_codec;
    FrameHandle m_frame{av_frame_alloc()};
    PacketHandle m_packet{av_packet_alloc()};
    std::vector<float> m_rest; ///< Less than a frame, interleaved.
    std::int64_t m_position = 0;
};

} // namespace tavi
