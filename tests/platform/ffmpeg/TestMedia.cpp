#include "platform/ffmpeg/TestMedia.h"

#include "platform/ffmpeg/MovieBoxes.h"
#include "render/YuvConverter.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace tavi::testing {

namespace fs = std::filesystem;

namespace {

/// Brightness of a block that stands for 0, and the step to the next digit:
/// wide enough that no encoder's error reaches the next one.
constexpr int kDarkest = 16;
constexpr int kStep = 4;
constexpr int kDigits = 50;

class MediaFolder {
public:
    MediaFolder() {
        std::string name = (fs::temp_directory_path() / "tavi-media-XXXXXX").string();
        m_path = ::mkdtemp(name.data());
    }
    ~MediaFolder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

int digitAt(const PixelBuffer& image, int x) {
    const int grey = image.row(image.height() / 2)[x * PixelBuffer::kBytesPerPixel + 1];
    return static_cast<int>(std::lround(grey * 219.0 / 255.0 / kStep));
}

} // namespace

FfmpegMediaLibrary mediaLibrary() {
    return FfmpegMediaLibrary(std::make_shared<YuvConverter>());
}

FfmpegImageGenerator imageGenerator() {
    return FfmpegImageGenerator(std::make_shared<YuvConverter>());
}

const fs::path& mediaFolder() {
    static const MediaFolder folder;
    return folder.path();
}

fs::path freshPath(const std::string& name) {
    fs::path path = mediaFolder() / name;
    fs::remove_all(path);
    return path;
}

bool run(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

std::string outputOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string text;
    std::array<char, 4096> chunk{};
    while (pipe && std::fgets(chunk.data(), chunk.size(), pipe.get())) {
        text += chunk.data();
    }
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text;
}

fs::path generated(const std::string& name, const std::string& arguments) {
    // Two tests may well think of one name.
    fs::path path = mediaFolder() / fmt::format("{:x}", std::hash<std::string>()(arguments)) / name;
    fs::create_directories(path.parent_path());
    if (!fs::exists(path)) {
        const std::string command = fmt::format(
            "timeout 60 ffmpeg -nostdin -v error -y {} '{}' </dev/null", arguments, path.string());
        EXPECT_TRUE(run(command)) << command;
    }
    return path;
}

std::string numberedSource(int rate, double seconds, const std::string& size) {
    return fmt::format("-f lavfi -i \"color=black:s={}:r={}:d={},format=yuv444p,geq="
                       "lum='{}+{}*if(lt(X,W/2),mod(N,{}),floor(N/{}))':cb=128:cr=128\"",
                       size, rate, seconds, kDarkest, kStep, kDigits, kDigits);
}

int numberIn(const PixelBuffer& image) {
    return digitAt(image, image.width() / 4) + kDigits * digitAt(image, image.width() * 3 / 4);
}

void drawNumber(PixelBuffer& image, int n) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int digit = x < image.width() / 2 ? n % kDigits : n / kDigits;
            const auto grey = static_cast<std::uint8_t>(std::lround(digit * kStep * 255.0 / 219.0));
            std::uint8_t* pixel = image.row(y) + x * PixelBuffer::kBytesPerPixel;
            pixel[0] = pixel[1] = pixel[2] = grey;
            pixel[3] = 255;
        }
    }
}

PixelBufferPtr numbered(int n) {
    auto picture = std::make_shared<PixelBuffer>(kPictureWidth, kPictureHeight);
    drawNumber(*picture, n);
    return picture;
}

PixelBufferPtr noise(int seed) {
    auto picture = std::make_shared<PixelBuffer>(kPictureWidth, kPictureHeight);
    std::uint32_t state = static_cast<std::uint32_t>(seed) * 7919 + 1;
    for (int y = 0; y < kPictureHeight; ++y) {
        for (int x = 0; x < kPictureWidth * 4; ++x) {
            state = state * 1664525 + 1013904223;
            picture->row(y)[x] = static_cast<std::uint8_t>(state >> 24);
        }
    }
    return picture;
}

std::string probe(const fs::path& file, const std::string& entries) {
    return outputOf(fmt::format("ffprobe -v error -select_streams v:0 -show_entries {} "
                                "-of default=nw=1:nk=1 '{}' | head -1",
                                entries, file.string()));
}

std::string boxesOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const ReadBytes read = [&](std::uint64_t offset, std::span<std::uint8_t> bytes) {
        stream.clear();
        stream.seekg(static_cast<std::streamoff>(offset));
        stream.read(reinterpret_cast<char*>(bytes.data()),
                    static_cast<std::streamsize>(bytes.size()));
        return static_cast<std::size_t>(stream.gcount()) == bytes.size();
    };
    const std::uint64_t size = fs::file_size(file);
    std::string types;
    for (auto box = readBox(read, 0, size); box; box = readBox(read, box->end, size)) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            types += static_cast<char>(box->type >> shift);
        }
        types += box->end < size ? " " : "";
    }
    return types;
}

std::vector<NumberedTime> readNumbers(const fs::path& file, double start, double end) {
    FfmpegMediaLibrary library = mediaLibrary();
    std::vector<NumberedTime> samples;
    const auto asset = library.openAsset(file);
    if (!asset || asset->videoTracks.empty()) {
        ADD_FAILURE() << (asset ? "no video track" : asset.error().description());
        return samples;
    }
    const MediaTime from = MediaTime::fromSeconds(start, 90000);
    const MediaTimeRange range{from, MediaTime::fromSeconds(end, 90000) - from};
    const auto reader = library.makeVideoReader(*asset, asset->videoTracks.front(), range);
    if (!reader) {
        ADD_FAILURE() << reader.error().description();
        return samples;
    }
    while (const auto sample = (*reader)->copyNextSample()) {
        samples.push_back(
            {sample->image ? numberIn(*sample->image) : -1, sample->presentationTime.seconds()});
    }
    return samples;
}

PixelBufferPtr readPicture(const fs::path& file, double time) {
    FfmpegMediaLibrary library = mediaLibrary();
    const auto asset = library.openAsset(file);
    if (!asset || asset->videoTracks.empty()) {
        ADD_FAILURE() << (asset ? "no video track" : asset.error().description());
        return std::make_shared<PixelBuffer>(1, 1);
    }
    const MediaTimeRange range{MediaTime::fromSeconds(time, 90000), {1000, 1}};
    const auto reader = library.makeVideoReader(*asset, asset->videoTracks.front(), range);
    const auto sample = reader ? (*reader)->copyNextSample() : std::nullopt;
    if (!sample || !sample->image) {
        ADD_FAILURE() << "no picture at " << time << " in " << file;
        return std::make_shared<PixelBuffer>(1, 1);
    }
    return sample->image;
}

std::array<int, 3> colourAt(const PixelBuffer& image, int x, int y) {
    const std::uint8_t* pixel = image.row(y) + x * PixelBuffer::kBytesPerPixel;
    return {pixel[0], pixel[1], pixel[2]};
}

} // namespace tavi::testing
