// Encodes a film as a recording of it would be: record_film FILE OUT.mov [PICTURES]
//
// Prints the processor time of a picture, all threads together; what the film was decoded from
// does not count.

#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "player/Measurement.h"
#include "render/YuvConverter.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace tavi::bench {
namespace {

constexpr int kFrameRate = 60;
constexpr std::int64_t kBitRate = 20'000'000;

std::vector<PixelBufferPtr> picturesOf(MediaLibrary& media, const char* file, std::size_t most) {
    const auto asset = media.openAsset(file);
    const auto reader =
        asset ? media.makeVideoReader(*asset, asset->videoTracks.front(), {{}, asset->duration})
              : fail(asset.error());
    std::vector<PixelBufferPtr> pictures;
    while (reader && pictures.size() < most) {
        const auto sample = (*reader)->copyNextSample();
        if (!sample) {
            break;
        }
        pictures.push_back(sample->image);
    }
    return pictures;
}

Result<void, MediaError> encode(MediaLibrary& media, const char* target,
                                const std::vector<PixelBufferPtr>& pictures) {
    auto writer = media.makeWriter(target, FileType::quickTimeMovie);
    if (!writer) {
        return fail(writer.error());
    }
    const PixelBuffer& first = *pictures.front();
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
    for (const auto& picture : pictures) {
        while (!(*input)->isReadyForMoreMediaData()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        (*input)->append(picture, {n++, kFrameRate});
    }
    return (*writer)->finishWriting();
}

int run(const char* file, const char* target, std::size_t most) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    const auto pictures = picturesOf(media, file, most);
    if (pictures.empty()) {
        fmt::print(stderr, "record_film: {} has no pictures\n", file);
        return EXIT_FAILURE;
    }
    const double before = processorSeconds();
    if (const auto encoded = encode(media, target, pictures); !encoded) {
        fmt::print(stderr, "record_film: {}\n", encoded.error().description());
        return EXIT_FAILURE;
    }
    fmt::print("{} pictures, {:.1f} ms of processor time each\n", pictures.size(),
               (processorSeconds() - before) * 1e3 / static_cast<double>(pictures.size()));
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
