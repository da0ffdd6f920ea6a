#pragma once

#include "base/PixelBuffer.h"
#include "base/Result.h"
#include "platform/ffmpeg/EncoderSettings.h"
#include "platform/ffmpeg/KeyFrameSpacing.h"
#include "platform/ffmpeg/PixelConversion.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavi {

/// What of a picture an encoder is given.
enum class PictureContent {
    colours, ///< As if over black.
    alpha,   ///< As the brightness of a picture without colour, full range.
};

/// One encoder at work: BGRA pictures in, packets out, in two steps that two threads
/// may share.
///
/// Threads: convert() one at a time; encode() and drain() one at a time.
/// Errors are the library's words.
class VideoEncoder {
public:
    /// Takes each packet as it comes; a negative library code from it ends the encoding.
    using Sink = std::function<int(AVPacket&)>;

    /// Opens the encoder; `timescale` is its clock, ticks per second. `colours`: see
    /// PictureEncoding. Width and height are even.
    static Result<std::unique_ptr<VideoEncoder>, std::string>
    open(const EncoderKind& kind, const VideoSettings& settings, int timescale,
         std::shared_ptr<const ColorConverter> colours,
         PictureContent content = PictureContent::colours);

    /// A picture as the encoder takes it, in recycled memory; null where the library
    /// has no way to convert it or no memory.
    FrameHandle convert(const PixelBuffer& picture);

    /// Encodes one picture of convert(), shown from `ticks` on. Returns what the sink
    /// or the library said, 0 for success.
    int encode(AVFrame& frame, std::int64_t ticks, const Sink& sink);

    /// Gives the sink the packets that are still inside. Nothing can be encoded after it.
    int drain(const Sink& sink);

    PictureContent content() const { return m_content; }
    const AVCodecContext& context() const { return *m_codec; }
    std::string name() const { return m_codec->codec->name; }

private:
    VideoEncoder(const EncoderKind& kind, std::shared_ptr<const ColorConverter> colours,
                 PictureContent content);

    int openCodec(const VideoSettings& settings, int timescale);
    int openDevice();
    FrameHandle makeFrame();
    std::int64_t nextDecodingTime();
    int send(AVFrame* frame, const Sink& sink);
    int upload(const AVFrame& frame, const Sink& sink);

    EncoderKind m_kind;
    PictureContent m_content;
    BufferHandle m_device;
    CodecHandle m_codec;
    BufferPoolHandle m_memory; ///< Of converted pictures.
    PacketHandle m_packet{av_packet_alloc()};
    PictureEncoding m_conversion;
    std::optional<KeyFrameSpacing> m_keyFrames; ///< Of live pictures.
    std::int64_t m_interval = 1;                ///< Ticks from one picture to the next, nominally.
    std::int64_t m_reordering = 0;              ///< Pictures that decoding is ahead by.
    std::int64_t m_packets = 0;                 ///< That came so far.
    std::deque<std::int64_t> m_times;           ///< Of pictures whose time no packet has taken yet.
};

} // namespace tavi
