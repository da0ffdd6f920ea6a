// Encodes a film as a recording of it would be: record_film FILE OUT.mov [PICTURES]
//
// Prints the processor time of a picture, all threads together. The film is decoded twice, once to
// tell what that costs: it does not count.

#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "player/Measurement.h"
#include "render/YuvConverter.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>
#include <utility>

namespace tavi::bench {
namespace {

constexpr int kFrameRate = 60;
constexpr std::int64_t kBitRate = 20'000'000;

/// Calls `take` with each picture of a film, `most` of them at most; returns how many there were.
std::size_t forPicturesOf(MediaLibrary& media, const char* file, std::size_t most,
                          const std::function<void(PixelBufferPtr)>& take) {
    const auto asset = media.openAsset(file);
    const auto reader =
        asset ? media.makeVideoReader(*asset, asset->videoTracks.front(), {{}, asset->duration})
              : fail(asset.error());
    std::size_t count = 0;
    while (reader && count < most) {
        const auto sample = (*reader)->copyNextSample();
        if (!sample) {
            break;
        }
        take(sample->image);
        ++count;
    }
    return count;
}

Result<void, MediaError> encode(MediaLibrary& media, const char* file, const char* target,
                                std::size_t most, const PixelBuffer& first) {
    auto writer = media.makeWriter(target, FileType::quickTimeMovie);
    if (!writer) {
        return fail(writer.error());
    }
    const auto input = (*writer)->addVideoInput({.codec = VideoCodec::hevc,
                                                 .width = first.width(),
                                                 .height = first.height(),
                                                 .bitRate = kBitRate,
                                                 .expectedFrameRate = kFrameRate,
                                                 .realTime = true});
    if (!input) {
        return fail(input.error());
    }
    if (auto started = (*writer)->startWriting(); !started) {
        return started;
    }
    (*writer)->startSession({});
    std::int64_t n = 0;
    forPicturesOf(media, file, most, [&](const PixelBufferPtr& picture) {
        while (!(*input)->isReadyForMoreMediaData()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        (*input)->append(picture, {n++, kFrameRate});
    });
    return (*writer)->finishWriting();
}

int run(const char* file, const char* target, std::size_t most) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    PixelBufferPtr last;
    const double start = processorSeconds();
    const std::size_t count = forPicturesOf(
        media, file, most, [&](PixelBufferPtr picture) { last = std::move(picture); });
    if (count == 0) {
        fmt::print(stderr, "record_film: {} has no pictures\n", file);
        return EXIT_FAILURE;
    }
    const double before = processorSeconds();
    if (const auto encoded = encode(media, file, target, most, *last); !encoded) {
        fmt::print(stderr, "record_film: {}\n", encoded.error().description());
        return EXIT_FAILURE;
    }
    const double spent = processorSeconds() - before - (before - start);
    fmt::print("{} pictures, {:.1f} ms of processor time each\n", count,
               spent * 1e3 / static_cast<double>(count));
    return EXIT_SUCCESS;
}

} // namespace
} // namespace tavi::bench

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: record_film FILE OUT.mov [PICTURES]\n", stderr);
        return 2;
    }
    const int most = argc > 3 ? std::atoi(argv[3]) : 240;
    return tavi::bench::run(argv[1], argv[2], static_cast<std::size_t>(std::max(most, 1)));
}
