#include "platform/ffmpeg/TrackDecoder.h"

#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/FfmpegErrors.h"
#include "platform/ffmpeg/HevcRows.h"

extern "C" {
#include <libavutil/common.h>
}

#include <algorithm>
#include <limits>
#include <utility>

namespace tavi {

namespace {

/// So many unreadable packets in a row mean that the rest of the file is gone.
constexpr int kMostReadErrors = 64;

MediaError noSuchTrack(const std::filesystem::path& path, AVMediaType type) {
    return type == AVMEDIA_TYPE_VIDEO
               ? mediaError(MediaError::Kind::noVideoTrack, path, {})
               : mediaError(MediaError::Kind::cannotDecode, path, "it has no such track of sound");
}

} // namespace

Result<void, MediaError> TrackDecoder::open(const std::filesystem::path& path, int track,
                                            AVMediaType type, int threads, DecoderUse use) {
    auto input = openInput(path);
    if (!input) {
        return fail(input.error());
    }
    m_path = path;
    m_track = track;
    m_type = type;
    m_input = std::move(*input);
    if (track < 0 || track >= static_cast<int>(m_input->nb_streams) ||
        stream().codecpar->codec_type != type) {
        return fail(noSuchTrack(path, type));
    }
    for (unsigned i = 0; i < m_input->nb_streams; ++i) {
        const bool isWanted = static_cast<int>(i) == track;
        m_input->streams[i]->discard = isWanted ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    return openCodec(threads, use);
}

Result<void, MediaError> TrackDecoder::openCodec(int threads, DecoderUse use) {
    const AVCodecParameters* parameters = stream().codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters->codec_id);
    if (!codec) {
        return fail(
            unreadable(std::string("no decoder for ") + avcodec_get_name(parameters->codec_id)));
    }
    m_codec.reset(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(m_codec.get(), parameters);
    m_codec->pkt_timebase = stream().time_base;
    m_codec->thread_count = threads;
    // Several threads a picture, where it is made for that, give it sooner than a picture a thread.
    const bool isByRow = use == DecoderUse::jumps && parameters->codec_id == AV_CODEC_ID_HEVC &&
                         hasParallelRows({parameters->extradata,
                                          static_cast<std::size_t>(parameters->extradata_size)});
    m_codec->thread_type = isByRow ? FF_THREAD_SLICE : FF_THREAD_FRAME | FF_THREAD_SLICE;
    if (const int code = avcodec_open2(m_codec.get(), codec, nullptr); code < 0) {
        return fail(unreadable(ffmpegReason(code)));
    }
    return {};
}

MediaError TrackDecoder::unreadable(const std::string& reason) const {
    return mediaError(MediaError::Kind::cannotDecode, m_path, reason);
}

bool TrackDecoder::jump(std::int64_t ticks) {
    constexpr std::int64_t kAnyEarlier = std::numeric_limits<std::int64_t>::min();
    if (avformat_seek_file(m_input.get(), m_track, kAnyEarlier, ticks, ticks, 0) < 0 &&
        av_seek_frame(m_input.get(), m_track, ticks, AVSEEK_FLAG_BACKWARD) < 0) {
        return false;
    }
    avcodec_flush_buffers(m_codec.get());
    m_isDraining = false;
    m_readErrors = 0;
    m_error.reset();
    m_hurry.reset();
    m_latestInHurry.reset();
    m_lastHurriedOver.reset();
    return true;
}

void TrackDecoder::hurryTo(std::int64_t ticks) {
    m_hurry = ticks;
    if (m_latestInHurry && *m_latestInHurry > ticks) {
        m_latestInHurry.reset();
    }
}

bool TrackDecoder::decode(AVFrame& frame) {
    while (true) {
        const int code = avcodec_receive_frame(m_codec.get(), &frame);
        if (code >= 0) {
            m_hasDecoded = true;
            return true;
        }
        if (code == AVERROR_EOF || (m_isDraining && m_readErrors > kMostReadErrors)) {
            noteEnd();
            return false;
        }
        feed(); // Either it asks for more, or this stretch is damaged.
    }
}

/// Hands the decoder one more packet, or tells it that there are no more.
void TrackDecoder::feed() {
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
            m_error = unreadable(ffmpegReason(code));
            continue;
        }
        const bool isOurs = m_packet->stream_index == m_track;
        if (isOurs) {
            notePacket();
            chooseSkipping();
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

void TrackDecoder::notePacket() {
    m_readErrors = 0;
    m_hasPackets = true;
    m_isReordered = m_isReordered || m_packet->pts != m_packet->dts;
    m_packetEnd.reset();
    if (m_packet->pts != AV_NOPTS_VALUE && m_packet->duration > 0) {
        m_packetEnd = av_sat_add64(m_packet->pts, m_packet->duration);
    }
}

/// Has the decoder leave out the packet that was read if it is one to hurry over.
void TrackDecoder::chooseSkipping() {
    m_codec->skip_frame = AVDISCARD_DEFAULT;
    const std::int64_t time = m_packet->pts;
    if (!m_hurry || time == AV_NOPTS_VALUE || time > *m_hurry) {
        return;
    }
    if (m_latestInHurry && time < *m_latestInHurry) {
        m_codec->skip_frame = AVDISCARD_NONREF;
        m_lastHurriedOver = std::max(m_lastHurriedOver.value_or(time), time);
    } else {
        m_latestInHurry = time;
    }
}

/// A track of sound may be empty; one of pictures may not.
void TrackDecoder::noteEnd() {
    if (m_readErrors == 0) {
        m_error.reset(); // What was unreadable lay in the middle.
    }
    const bool isVideo = m_type == AVMEDIA_TYPE_VIDEO;
    if (!m_hasDecoded && !m_error && (isVideo || m_hasPackets)) {
        m_error = unreadable(isVideo ? TAVI_TEXT("Errors", "no picture could be decoded")
                                     : TAVI_TEXT("Errors", "no sound could be decoded"));
    }
}

} // namespace tavi
