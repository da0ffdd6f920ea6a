// Takes an export apart for measurements.
//
//   raw_film frames TAKE RAW [KEY=VALUE]...   everything but the encoder: writes the
//                                             finished pictures as raw 4:2:0 samples
//   raw_film encode RAW FILM WIDTH HEIGHT FPS [draft]
//                                             the encoder alone, with an export's settings

#include "base/Clock.h"
#include "export/RawFilm.h"
#include "platform/ffmpeg/EncoderSettings.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/ffmpeg/MovieFile.h"
#include "project/ProjectOverrides.h"
#include "project/RecordingFolder.h"
#include "project/TakeLoader.h"
#include "render/VideoExportService.h"
#include "render/YuvConverter.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <cstdio>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>

namespace {

using namespace tavi;

void require(bool isGood, const std::string& what) {
    if (!isGood) {
        throw std::runtime_error(what);
    }
}

void writeFrames(std::span<char*> arguments) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    bench::RawFilmLibrary raw(media);
    EditProject project = loadTake(arguments[0], [](const auto&) { return PixelBufferPtr(); });
    project.recordingPath = folderUrl(arguments[0]);
    for (const char* assignment : arguments.subspan(2)) {
        const auto set = setProjectOption(project, assignment);
        require(set.has_value(), set ? "" : set.error());
    }
    const SystemClock clock;
    VideoExportService service(raw, clock, "/dev/null", [](std::chrono::nanoseconds) {});
    const auto report = service.exportProject(project, arguments[1], [](double) {});
    require(report && !problemOf(*report, arguments[1]), "the export failed");
}

/// The planes of raw samples in the memory that the encoder reads.
void fill(AVFrame& frame, std::FILE* raw, bool& isAtEnd) {
    for (int plane = 0; plane < 3 && !isAtEnd; ++plane) {
        const int shift = plane > 0 ? 1 : 0;
        const auto bytes = static_cast<std::size_t>(frame.width >> shift);
        for (int y = 0; y < frame.height >> shift && !isAtEnd; ++y) {
            std::uint8_t* row = frame.data[plane] + std::ptrdiff_t{y} * frame.linesize[plane];
            isAtEnd = std::fread(row, 1, bytes, raw) != bytes;
        }
    }
}

void send(AVCodecContext& codec, AVFrame* frame, MovieFile& film, int track) {
    require(avcodec_send_frame(&codec, frame) >= 0, "the encoder takes no picture");
    const PacketHandle packet(av_packet_alloc());
    while (avcodec_receive_packet(&codec, packet.get()) >= 0) {
        require(film.write(track, *packet) >= 0, "the film can't be written");
    }
}

void encodeFrames(std::span<char*> arguments) {
    VideoSettings settings;
    settings.width = std::stoi(arguments[2]);
    settings.height = std::stoi(arguments[3]);
    settings.expectedFrameRate = std::stoi(arguments[4]);
    settings.bitRate = exportBitRate(settings.width, settings.height);
    settings.isDraft = arguments.size() > 5;
    const EncoderKind kind{"libx265", AV_PIX_FMT_YUV420P, AV_HWDEVICE_TYPE_NONE, false};
    const int timescale = MovieFile::timescale(FileType::mp4);
    const AVCodec* encoder = avcodec_find_encoder_by_name(kind.name);
    const CodecHandle codec(avcodec_alloc_context3(encoder));
    Options options;
    configureEncoder(*codec, options, kind, settings, timescale);
    require(avcodec_open2(codec.get(), encoder, options.address()) >= 0, "no libx265");
    MovieFile film(arguments[1], FileType::mp4);
    const int track = film.addTrack(*codec, settings.expectedFrameRate);
    require(film.open().has_value(), "the film can't be written");
    std::FILE* raw = std::fopen(arguments[0], "rb");
    require(raw != nullptr, "the raw film can't be read");
    const FrameHandle frame(av_frame_alloc());
    frame->format = kind.input;
    frame->width = settings.width;
    frame->height = settings.height;
    require(av_frame_get_buffer(frame.get(), 0) >= 0, "no memory");
    bool isAtEnd = false;
    for (std::int64_t n = 0; !isAtEnd; ++n) {
        require(av_frame_make_writable(frame.get()) >= 0, "no memory");
        frame->pts = n * timescale / settings.expectedFrameRate;
        fill(*frame, raw, isAtEnd);
        if (!isAtEnd) {
            send(*codec, frame.get(), film, track);
        }
    }
    std::fclose(raw);
    send(*codec, nullptr, film, track);
    require(film.finish(std::nullopt).has_value(), "the film can't be finished");
}

} // namespace

int main(int argc, char** argv) {
    const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
    const std::string command = argc > 1 ? argv[1] : "";
    try {
        if (command == "frames" && argc > 3) {
            writeFrames(arguments.subspan(2));
        } else if (command == "encode" && argc > 6) {
            encodeFrames(arguments.subspan(2));
        } else {
            std::fputs("usage: see the head of main.cpp\n", stderr);
            return 2;
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "raw_film: %s\n", error.what());
        return 1;
    }
    return 0;
}
