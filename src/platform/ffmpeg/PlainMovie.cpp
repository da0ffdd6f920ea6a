#include "platform/ffmpeg/PlainMovie.h"

#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/FfmpegErrors.h"
#include "platform/ffmpeg/FfmpegHandles.h"
#include "platform/ffmpeg/WorkingFile.h"

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

int copyPackets(AVFormatContext& input, AVFormatContext& output) {
    const PacketHandle packet(av_packet_alloc());
    int code = 0;
    while ((code = av_read_frame(&input, packet.get())) >= 0) {
        const int track = packet->stream_index;
        av_packet_rescale_ts(packet.get(), input.streams[track]->time_base,
                             output.streams[track]->time_base);
        packet->pos = -1;
        code = av_interleaved_write_frame(&output, packet.get());
        if (code < 0) {
            return code;
        }
    }
    return code == AVERROR_EOF ? 0 : code;
}

int copyMovie(AVFormatContext& input, const std::filesystem::path& to, int timescale) {
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
    if ((code = copyPackets(input, *output)) < 0) {
        return code;
    }
    if ((code = av_write_trailer(output.get())) < 0) {
        return code;
    }
    return avio_closep(&output->pb);
}

} // namespace

Result<void, MediaError> makePlainMovie(const std::filesystem::path& path, int timescale) {
    const auto input = openInput(path);
    if (!input) {
        return fail(input.error());
    }
    const std::filesystem::path working = workingPath(path);
    if (const int code = copyMovie(**input, working, timescale); code < 0) {
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
