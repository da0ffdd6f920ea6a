#include "platform/ffmpeg/MovieFile.h"

#include "platform/ffmpeg/FfmpegErrors.h"
#include "platform/ffmpeg/WorkingFile.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tavi {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kExportTimescale = 60'000;
constexpr int kTakeTimescale = 90'000;

/// What a killed recording may lose: short enough not to be missed, long
/// enough that the fragments' headers weigh nothing.
constexpr std::chrono::milliseconds kFragmentLength{500};

/// A picture whose successor is unknown when it is written.
constexpr std::int64_t kOneTick = 1;

/// Packets that wait for their place among those of another track are written
/// without it when they are so far ahead, in microseconds: a track may be silent
/// for long, have ended, or never begin. It is far more than encoders keep inside, on a busy
/// machine too, since players that stream want tracks side by side; and it is memory.
constexpr std::int64_t kMostApart = 10'000'000;

/// A fragment is kept in memory until it is written.
constexpr std::int64_t kFragmentBytes = 8 << 20;

bool isDue(Clock::time_point since) {
    return Clock::now() - since >= kFragmentLength;
}

} // namespace

MovieFile::MovieFile(fs::path path, FileType type)
    : m_path(std::move(path)),
      m_type(type),
      m_workingPath(type == FileType::mp4 ? workingPath(m_path) : m_path) {
    AVFormatContext* output = nullptr;
    const char* format = type == FileType::mp4 ? "mp4" : "mov";
    avformat_alloc_output_context2(&output, nullptr, format, fileUrl(m_workingPath).c_str());
    m_output.reset(output);
    // A first picture that comes late stays late: times are not moved to zero.
    m_output->avoid_negative_ts = AVFMT_AVOID_NEG_TS_DISABLED;
}

MovieFile::~MovieFile() = default;

int MovieFile::timescale(FileType type) {
    return type == FileType::mp4 ? kExportTimescale : kTakeTimescale;
}

AVStream& MovieFile::newStream(const AVCodecContext& encoder, int timescale) {
    AVStream* stream = avformat_new_stream(m_output.get(), nullptr);
    avcodec_parameters_from_context(stream->codecpar, &encoder);
    stream->time_base = {1, timescale};
    return *stream;
}

int MovieFile::addTrack(const AVCodecContext& encoder, int frameRate, const char* name) {
    AVStream& stream = newStream(encoder, timescale(m_type));
    if (name) {
        av_dict_set(&stream.metadata, "handler_name", name, 0);
    }
    stream.avg_frame_rate = {frameRate, 1};
    stream.sample_aspect_ratio = encoder.sample_aspect_ratio;
    Track track;
    track.index = stream.index;
    track.timescale = timescale(m_type);
    track.interval = std::max(timescale(m_type) / std::max(frameRate, 1), 1);
    track.held.reset(av_packet_alloc());
    m_tracks.push_back(std::move(track));
    return stream.index;
}

int MovieFile::addSoundTrack(const AVCodecContext& encoder) {
    const AVStream& stream = newStream(encoder, encoder.sample_rate);
    Track track;
    track.index = stream.index;
    track.isSound = true;
    track.timescale = encoder.sample_rate;
    track.shift = isFragmented() ? encoder.initial_padding : 0;
    track.held.reset(av_packet_alloc());
    m_tracks.push_back(std::move(track));
    return stream.index;
}

Result<void, MediaError> MovieFile::open() {
    std::error_code ignored;
    if (fs::is_directory(m_path, ignored)) {
        return fail(writeError(m_path, AVERROR(EISDIR)));
    }
    int code = avio_open(&m_output->pb, fileUrl(m_workingPath).c_str(), AVIO_FLAG_WRITE);
    if (code < 0) {
        return fail(writeError(m_path, code));
    }
    m_isOpen = true;
    code = writeHeader();
    avio_flush(m_output->pb);
    code = code < 0 ? code : m_output->pb->error;
    if (code < 0) {
        abandon();
        return fail(writeError(m_path, code));
    }
    m_wholeBytes = avio_tell(m_output->pb);
    if (isFragmented()) {
        m_plain = PlainMovie::open(m_path).value_or(nullptr);
    }
    return {};
}

int MovieFile::writeHeader() {
    Options options;
    options.set("video_track_timescale", std::int64_t{timescale(m_type)});
    options.set("movie_timescale", std::int64_t{timescale(m_type)});
    options.set("movflags", isFragmented() ? "frag_custom+empty_moov+default_base_moof+skip_trailer"
                                           : "faststart");
    if (isFragmented()) {
        return writeFragmentedHeader(options);
    }
    m_output->max_interleave_delta = kMostApart;
    return avformat_write_header(m_output.get(), options.address());
}

/// The library writes a fragmented file's index before it knows of any sound,
/// so without edit lists; they are put in on the way to the file.
int MovieFile::writeFragmentedHeader(Options& options) {
    AVIOContext* file = m_output->pb;
    int code = avio_open_dyn_buf(&m_output->pb);
    if (code < 0) {
        m_output->pb = file;
        return code;
    }
    code = avformat_write_header(m_output.get(), options.address());
    std::uint8_t* written = nullptr;
    const int size = avio_close_dyn_buf(m_output->pb, &written);
    m_output->pb = file;
    std::vector<std::uint8_t> header(written, written + std::max(size, 0));
    av_free(written);
    for (const Track& track : m_tracks) {
        if (track.shift > 0) {
            header = withEditList(header, static_cast<std::size_t>(track.index), track.shift);
        }
    }
    avio_write(file, header.data(), static_cast<int>(header.size()));
    return code;
}

int MovieFile::write(int index, AVPacket& packet) {
    const std::lock_guard lock(m_mutex);
    Track& track = m_tracks[static_cast<std::size_t>(index)];
    if (track.isSound) { // Its packets know how long they last.
        const int code = writePacket(track, packet);
        return code < 0 ? code : flushIfFull();
    }
    m_hasPictures = true;
    int code = 0;
    if (track.held->data) {
        code = writeHeld(track, std::max(packet.dts - track.held->dts, kOneTick));
        if (code >= 0) {
            code = flushIfFirst();
        }
    }
    if (code >= 0) {
        code = flushIfFull();
    }
    av_packet_move_ref(track.held.get(), &packet);
    track.heldSince = Clock::now();
    return code;
}

/// The first picture goes to the disk at once: a take opens from then on, whenever it is killed.
int MovieFile::flushIfFirst() {
    return isFragmented() && !std::exchange(m_opens, true) ? flushFragment() : 0;
}

int MovieFile::flushIfFull() {
    const bool isFull =
        m_fragmentSince && (isDue(*m_fragmentSince) || m_fragmentBytes >= kFragmentBytes);
    return isFull ? flushFragment() : 0;
}

int MovieFile::flushIfDue() {
    const std::lock_guard lock(m_mutex);
    if (!isFragmented()) {
        return 0;
    }
    int code = 0;
    for (Track& track : m_tracks) {
        if (code >= 0 && track.held->data && isDue(track.heldSince)) {
            code = writeHeld(track, kOneTick);
        }
    }
    if (code >= 0 && m_fragmentSince && isDue(*m_fragmentSince)) {
        code = flushFragment();
    }
    return code;
}

int MovieFile::writeHeld(Track& track, std::int64_t duration) {
    track.held->duration = duration;
    track.lastPts = track.held->pts;
    track.lastDuration = duration;
    if (isFragmented() && !m_fragmentSince) {
        m_fragmentSince = track.heldSince;
    }
    return writePacket(track, *track.held);
}

int MovieFile::writePacket(Track& track, AVPacket& packet) {
    packet.stream_index = track.index;
    packet.time_base = {1, track.timescale};
    packet.pts += track.shift;
    packet.dts += track.shift;
    av_packet_rescale_ts(&packet, packet.time_base, m_output->streams[track.index]->time_base);
    if (isFragmented() && m_fragmentBytes == 0) {
        m_fragmentSince = m_fragmentSince.value_or(Clock::now());
        // Its time stands on its own: the last fragment may have ended before
        // it was known how long its last picture lasts.
        av_opt_set(m_output->priv_data, "movflags", "+frag_discont", 0);
    }
    m_fragmentBytes += packet.size;
    const bool mustInterleave = !isFragmented() && m_tracks.size() > 1;
    const int code = mustInterleave ? av_interleaved_write_frame(m_output.get(), &packet)
                                    : av_write_frame(m_output.get(), &packet);
    av_packet_unref(&packet);
    return code < 0 ? code : m_output->pb->error;
}

int MovieFile::flushFragment() {
    m_fragmentSince.reset();
    m_fragmentBytes = 0;
    const int code = av_write_frame(m_output.get(), nullptr);
    avio_flush(m_output->pb);
    if (code < 0 || m_output->pb->error < 0) {
        return code < 0 ? code : m_output->pb->error;
    }
    m_wholeBytes = avio_tell(m_output->pb);
    if (m_plain) {
        m_plain->readMore();
    }
    return 0;
}

int MovieFile::writeRest(std::optional<std::int64_t> endTicks) {
    int code = 0;
    for (Track& track : m_tracks) {
        if (code >= 0 && track.held->data) {
            const std::int64_t end = endTicks.value_or(track.held->pts + track.interval);
            code = writeHeld(track, std::max(end - track.held->pts, kOneTick));
        } else if (endTicks && !track.isSound) {
            // Written long ago to be safe in the file, when its length was unknown.
            track.lastDuration = std::max(*endTicks - track.lastPts, kOneTick);
        }
    }
    if (code >= 0 && isFragmented()) {
        code = flushFragment();
    }
    return code < 0 ? code : av_write_trailer(m_output.get());
}

int MovieFile::closeHandle() {
    for (Track& track : m_tracks) {
        av_packet_unref(track.held.get());
    }
    return m_output->pb ? avio_closep(&m_output->pb) : 0;
}

Result<void, MediaError> MovieFile::finish(std::optional<std::int64_t> endTicks) {
    int code = writeRest(endTicks);
    if (code >= 0) {
        code = closeHandle();
    }
    if (code < 0) {
        salvage();
        return fail(writeError(m_path, code));
    }
    m_isOpen = false;
    return publish(endTicks);
}

Result<void, MediaError> MovieFile::publish(std::optional<std::int64_t> endTicks) {
    if (isFragmented()) {
        // Without room for the index the fragmented file stays: nothing is lost.
        MovieEnds ends{{}, endTicks};
        for (const Track& track : m_tracks) {
            ends.lastDurations.push_back(track.isSound ? std::nullopt
                                                       : std::optional(track.lastDuration));
        }
        if (m_plain) {
            (void)m_plain->complete(ends);
            m_plain.reset();
        }
        return {};
    }
    if (const int code = putInPlace(m_workingPath, m_path); code != 0) {
        return fail(writeError(m_path, AVERROR(code)));
    }
    return {};
}

void MovieFile::salvage() {
    if (!isFragmented()) {
        abandon();
    } else if (std::exchange(m_isOpen, false)) {
        closeHandle();
        std::error_code ignored;
        fs::resize_file(m_path, static_cast<std::uintmax_t>(m_wholeBytes), ignored);
    }
}

void MovieFile::abandon() {
    if (std::exchange(m_isOpen, false)) {
        closeHandle();
        std::error_code ignored;
        fs::remove(m_workingPath, ignored);
    }
}

} // namespace tavi
