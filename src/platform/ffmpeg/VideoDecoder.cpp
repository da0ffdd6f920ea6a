#include "platform/ffmpeg/VideoDecoder.h"

#include "platform/ffmpeg/AlphaFollower.h"
#include "platform/ffmpeg/AlphaPlane.h"
#include "platform/ffmpeg/FfmpegAsset.h"

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

namespace tavi {

namespace {

/// Each thread holds a picture in flight: more of them cost memory and make a
/// short stretch start later.
constexpr unsigned kMostThreads = 8;

/// How far before the wanted time to look for a key frame, in seconds, when the
/// one just before it was followed by pictures that lean on an earlier one.
constexpr std::array kLookBack{0.0, 2.0, 10.0};

int threadCount() {
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads));
}

/// Whether the index leads forward only, as it does unless an edit list joins several parts.
bool leadsForward(const AVStream& stream) {
    auto& track = const_cast<AVStream&>(stream); // Which the library only looks at.
    const int count = avformat_index_get_entries_count(&track);
    for (int i = 1; i < count; ++i) {
        const std::int64_t before = avformat_index_get_entry(&track, i - 1)->timestamp;
        if (avformat_index_get_entry(&track, i)->timestamp <= before) {
            return false;
        }
    }
    return true;
}

} // namespace

VideoDecoder::VideoDecoder() = default;
VideoDecoder::~VideoDecoder() = default;

Result<std::unique_ptr<VideoDecoder>, MediaError>
VideoDecoder::open(const std::filesystem::path& path, int track, DecoderUse use) {
    std::unique_ptr<VideoDecoder> decoder(new VideoDecoder());
    if (auto opened = decoder->m_track.open(path, track, AVMEDIA_TYPE_VIDEO, threadCount(), use);
        !opened) {
        return fail(std::move(opened.error()));
    }
    decoder->m_isIndexInOrder = leadsForward(decoder->stream());
    const auto alpha = alphaTrackOf(decoder->input());
    if (alpha && firstPictureTrack(decoder->input()) == track) {
        decoder->m_alpha = AlphaFollower::open(path, *alpha);
    }
    return decoder;
}

void VideoDecoder::seek(MediaTime time) {
    if (m_alpha) {
        m_alpha->jump();
    }
    const AVRational base = stream().time_base;
    const MediaTime origin = streamTime(
        stream().start_time == AV_NOPTS_VALUE ? 0 : std::min<std::int64_t>(stream().start_time, 0),
        base);
    for (const double back : kLookBack) {
        const MediaTime from = time - MediaTime::fromSeconds(back);
        m_isPeeked = from > origin && m_track.jump(ticksOf(from)) && decodeNext();
        if (m_isPeeked && m_time <= time) {
            return;
        }
    }
    m_track.jump(ticksOf(origin));
    m_isPeeked = decodeNext() != nullptr;
}

/// The last tick at or before `time`.
std::int64_t VideoDecoder::ticksOf(MediaTime time) const {
    const AVRational base = stream().time_base;
    const std::int64_t nearest = time.rescaled(base.den).value / base.num;
    return streamTime(nearest, base) > time ? nearest - 1 : nearest;
}

void VideoDecoder::hurryTo(MediaTime time) {
    m_track.hurryTo(ticksOf(time));
}

std::optional<MediaTime> VideoDecoder::lastHurriedOver() const {
    const auto ticks = m_track.lastHurriedOver();
    return ticks ? std::optional(streamTime(*ticks, stream().time_base)) : std::nullopt;
}

std::optional<MediaTime> VideoDecoder::keyFrameBefore(MediaTime time) const {
    // The library takes no constant track though it only looks.
    const AVIndexEntry* entry = avformat_index_get_entry_from_timestamp(
        const_cast<AVStream*>(&stream()), ticksOf(time), AVSEEK_FLAG_BACKWARD);
    return entry ? std::optional(streamTime(entry->timestamp, stream().time_base)) : std::nullopt;
}

std::optional<MediaTime> VideoDecoder::timeOfNext() const {
    auto& track = const_cast<AVStream&>(stream());
    const bool isWhole = avformat_index_get_entries_count(&track) == track.nb_frames;
    if (m_track.isReordered() || !m_isIndexInOrder || !isWhole) {
        return std::nullopt;
    }
    const std::int64_t ticks = ticksOf(m_time);
    const int at = av_index_search_timestamp(&track, ticks, AVSEEK_FLAG_ANY | AVSEEK_FLAG_BACKWARD);
    const AVIndexEntry* entry = avformat_index_get_entry(&track, at);
    const AVIndexEntry* next = avformat_index_get_entry(&track, at + 1);
    const bool isKnown = entry != nullptr && entry->timestamp == ticks && next != nullptr;
    return isKnown ? std::optional(streamTime(next->timestamp, track.time_base)) : std::nullopt;
}

AVFrame* VideoDecoder::next() {
    if (std::exchange(m_isPeeked, false)) {
        return m_frame.get();
    }
    return decodeNext();
}

AVFrame* VideoDecoder::decodeNext() {
    while (m_track.decode(*m_frame)) {
        if (m_frame->best_effort_timestamp != AV_NOPTS_VALUE) {
            m_time = streamTime(m_frame->best_effort_timestamp, stream().time_base);
            const AVFrame* alpha = m_alpha ? m_alpha->at(m_time) : nullptr;
            if (alpha) {
                joinAlpha(*m_frame, *alpha);
            }
            return m_frame.get();
        }
    }
    return nullptr;
}

} // namespace tavi
