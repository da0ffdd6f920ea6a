#include "platform/ffmpeg/VideoDecoder.h"

#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/FfmpegErrors.h"

#include <algorithm>
#include <array>
#include <limits>
#include <thread>
#include <utility>

namespace tavi {

namespace {

/// Each thread holds a picture in flight: more of them cost memory and make a
/// short stretch start later.
constexpr unsigned kMostThreads = 8;

/// So many unreadable packets in a row mean that the rest of the file is gone.
constexpr int kMostReadErrors = 64;

/// How far before the wanted time to look for a key frame, in seconds, when the
/// one just before it was followed by pictures that lean on an earlier one.
constexpr std::array kLookBack{0.0, 2.0, 10.0};

int threadCount() {
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads));
}

} // namespace

VideoDecoder::VideoDecoder(std::filesystem::path path, int track)
    : m_path(std::move(path)),
      m_track(track) {}

Result<std::unique_ptr<VideoDecoder>, MediaError>
VideoDecoder::open(const std::filesystem::path& path, int track) {
    auto input = openInput(path);
    if (!input) {
        return fail(input.error());
    }
    std::unique_ptr<VideoDecoder> decoder(new VideoDecoder(path, track));
    decoder->m_input = std::move(*input);
    if (const auto started = decoder->start(); !started) {
        return fail(started.error());
    }
    return decoder;
}

Result<void, MediaError> VideoDecoder::start() {
    using Kind = MediaError::Kind;
    if (m_track < 0 || m_track >= static_cast<int>(m_input->nb_streams) ||
        stream().codecpar->codec_type != AVMEDIA_TYPE_VIDEO) {
        return fail(mediaError(Kind::noVideoTrack, m_path, {}));
    }
    for (unsigned i = 0; i < m_input->nb_streams; ++i) {
        const bool isWanted = static_cast<int>(i) == m_track;
        m_input->streams[i]->discard = isWanted ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    const AVCodecParameters* parameters = stream().codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters->codec_id);
    if (!codec) {
        return fail(
            mediaError(Kind::cannotDecode, m_path,
                       std::string("no decoder for ") + avcodec_get_name(parameters->codec_id)));
    }
    m_codec.reset(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(m_codec.get(), parameters);
    m_codec->pkt_timebase = stream().time_base;
    m_codec->thread_count = threadCount();
    m_codec->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
    if (const int code = avcodec_open2(m_codec.get(), codec, nullptr); code < 0) {
        return fail(mediaError(Kind::cannotDecode, m_path, ffmpegReason(code)));
    }
    return {};
}

bool VideoDecoder::jump(std::int64_t ticks) {
    constexpr std::int64_t kAnyEarlier = std::numeric_limits<std::int64_t>::min();
    if (avformat_seek_file(m_input.get(), m_track, kAnyEarlier, ticks, ticks, 0) < 0 &&
        av_seek_frame(m_input.get(), m_track, ticks, AVSEEK_FLAG_BACKWARD) < 0) {
        return false;
    }
    avcodec_flush_buffers(m_codec.get());
    m_isDraining = false;
    m_readErrors = 0;
    m_error.reset();
    return true;
}

void VideoDecoder::seek(MediaTime time) {
    const AVRational base = stream().time_base;
    const MediaTime origin = streamTime(
        stream().start_time == AV_NOPTS_VALUE ? 0 : std::min<std::int64_t>(stream().start_time, 0),
        base);
    for (const double back : kLookBack) {
        const MediaTime from = time - MediaTime::fromSeconds(back);
        m_isPeeked =
            from > origin && jump(from.rescaled(base.den).value / base.num) && decodeNext();
        if (m_isPeeked && m_time <= time) {
            return;
        }
    }
    jump(streamTime(origin.value, base).value / base.num);
    m_isPeeked = decodeNext() != nullptr;
}

AVFrame* VideoDecoder::next() {
    if (std::exchange(m_isPeeked, false)) {
        return m_frame.get();
    }
    return decodeNext();
}

AVFrame* VideoDecoder::decodeNext() {
    while (true) {
        const int code = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (code == AVERROR_EOF || (m_isDraining && m_readErrors > kMostReadErrors)) {
            noteEnd();
            return nullptr;
        }
        if (code < 0) {
            feed(); // Either it asks for more, or this picture is damaged.
        } else if (m_frame->best_effort_timestamp != AV_NOPTS_VALUE) {
            m_hasDecoded = true;
            m_time = streamTime(m_frame->best_effort_timestamp, stream().time_base);
            return m_frame.get();
        }
    }
}

/// Hands the decoder one more packet, or tells it that there are no more.
void VideoDecoder::feed() {
    if (m_isDraining) {
        ++m_readErrors;
        return;
    }
    while (true) {
        const int code = av_read_frame(m_input.get(), m_packet.get());
        if (code == AVERROR_EOF || m_readErrors > kMostReadErrors) {
            break;
        }
        if (code < 0) {
            ++m_readErrors;
            m_error = mediaError(MediaError::Kind::cannotDecode, m_path, ffmpegReason(code));
            continue;
        }
        const bool isOurs = m_packet->stream_index == m_track;
        if (isOurs) {
            m_readErrors = 0;
            avcodec_send_packet(m_codec.get(), m_packet.get());
        }
        av_packet_unref(m_packet.get());
        if (isOurs) {
            return;
        }
    }
    m_isDraining = true;
    avcodec_send_packet(m_codec.get(), nullptr);
}

void VideoDecoder::noteEnd() {
    if (m_readErrors == 0) {
        m_error.reset(); // What was unreadable lay in the middle.
    }
    if (!m_hasDecoded && !m_error) {
        m_error = mediaError(MediaError::Kind::cannotDecode, m_path, "no picture could be decoded");
    }
}

} // namespace tavi
