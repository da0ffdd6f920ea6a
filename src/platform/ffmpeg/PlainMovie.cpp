#include "platform/ffmpeg/PlainMovie.h"

#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/FfmpegErrors.h"
#include "platform/ffmpeg/FfmpegHandles.h"
#include "platform/ffmpeg/WorkingFile.h"

#include <vector>

namespace tavi {

namespace {

int copyTracks(const AVFormatContext& input, AVFormatContext& output) {
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream& from = *input.streams[i];
        AVStream* to = avformat_new_stream(&output, nullptr);
        if (!to) {
            return AVERROR(ENOMEM);
        }
        const int code = avcodec_parameters_copy(to->codecpar, from.codecpar);
        if (code < 0) {
            return code;
        }
        to->time_base = from.time_base;
        to->sample_aspect_ratio = from.codecpar->sample_aspect_ratio;
    }
    return 0;
}

/// One track's way into the new file. The last packet is held back, since its
/// length has to be set.
struct TrackCopy {
    const AVStream* from = nullptr;
    const AVStream* to = nullptr;
    PacketHandle held{av_packet_alloc()};

    int flush(AVFormatContext& output) const {
        if (!held->data) {
            return 0;
        }
        av_packet_rescale_ts(held.get(), from->time_base, to->time_base);
        held->pos = -1;
        return av_interleaved_write_frame(&output, held.get());
    }
};

int copyPackets(AVFormatContext& input, AVFormatContext& output, int timescale,
                std::span<const std::int64_t> lastDurations) {
    std::vector<TrackCopy> tracks(input.nb_streams);
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        tracks[i].from = input.streams[i];
        tracks[i].to = output.streams[i];
    }
    const PacketHandle packet(av_packet_alloc());
    int code = 0;
    while ((code = av_read_frame(&input, packet.get())) >= 0) {
        const TrackCopy& track = tracks[static_cast<std::size_t>(packet->stream_index)];
        if ((code = track.flush(output)) < 0) {
            return code;
        }
        av_packet_move_ref(track.held.get(), packet.get());
    }
    for (std::size_t i = 0; i < tracks.size() && code == AVERROR_EOF; ++i) {
        if (i < lastDurations.size()) {
            tracks[i].held->duration =
                av_rescale_q(lastDurations[i], {1, timescale}, tracks[i].from->time_base);
        }
        const int flushed = tracks[i].flush(output);
        code = flushed < 0 ? flushed : code;
    }
    return code == AVERROR_EOF ? 0 : code;
}

int copyMovie(AVFormatContext& input, const std::filesystem::path& to, int timescale,
              std::span<const std::int64_t> lastDurations) {
    AVFormatContext* created = nullptr;
    int code = avformat_alloc_output_context2(&created, nullptr, "mov", fileUrl(to).c_str());
    if (code < 0) {
        return code;
    }
    const OutputHandle output(created);
    if ((code = copyTracks(input, *output)) < 0) {
        return code;
    }
    if ((code = avio_open(&output->pb, fileUrl(to).c_str(), AVIO_FLAG_WRITE)) < 0) {
        return code;
    }
    Options options;
    options.set("video_track_timescale", std::int64_t{timescale});
    options.set("movie_timescale", std::int64_t{timescale});
    if ((code = avformat_write_header(output.get(), options.address())) < 0) {
        return code;
    }
    if ((code = copyPackets(input, *output, timescale, lastDurations)) < 0) {
        return code;
    }
    if ((code = av_write_trailer(output.get())) < 0) {
        return code;
    }
    return avio_closep(&output->pb);
}

} // namespace

Result<void, MediaError> makePlainMovie(const std::filesystem::path& path, int timescale,
                                        std::span<const std::int64_t> lastDurations) {
    const auto input = openInput(path);
    if (!input) {
        return fail(input.error());
    }
    const std::filesystem::path working = workingPath(path);
    if (const int code = copyMovie(**input, working, timescale, lastDurations); code < 0) {
        std::error_code ignored;
        std::filesystem::remove(working, ignored);
        return fail(writeError(path, code));
    }
    if (const int code = putInPlace(working, path); code != 0) {
        return fail(writeError(path, AVERROR(code)));
    }
    return {};
}

} // namespace tavi
