#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/ffmpeg/FfmpegImageGenerator.h"
#include "platform/ffmpeg/TestMedia.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>

namespace tavi {

namespace {

using namespace tavi::testing;
namespace fs = std::filesystem;
using Kind = MediaError::Kind;

constexpr Size kUnbounded{10000, 10000};

fs::path numberedMovie() {
    return generated("stills.mov",
                     numberedSource(30, 2, "128x96") + " -c:v libx264 -crf 8 -bf 2 -g 15");
}

/// Red in the top left corner, green in the top right one, blue below.
fs::path cornered(const std::string& rotation) {
    const fs::path plain = generated(
        "corners.mp4", "-f lavfi -i \"color=blue:s=64x32:r=10:d=0.5,drawbox=0:0:32:16:red:fill,"
                       "drawbox=32:0:32:16:lime:fill\" -c:v libx264 -crf 4 -pix_fmt yuv420p");
    return generated(
        "corners-" + rotation + ".mp4",
        fmt::format("-i '{}' -c copy -metadata:s:v:0 rotate={}", plain.string(), rotation));
}

char nameOf(const std::array<int, 3>& bgr) {
    return bgr[2] > 180 ? 'r' : bgr[1] > 180 ? 'g' : bgr[0] > 180 ? 'b' : '?';
}

/// The colours of the four quarters, row by row.
std::string quarters(const PixelBuffer& image) {
    std::string names;
    for (const int y : {1, 3}) {
        for (const int x : {1, 3}) {
            names += nameOf(colourAt(image, image.width() * x / 4, image.height() * y / 4));
        }
    }
    return names;
}

std::string bytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeBytes(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

PixelBuffer samplePicture() {
    PixelBuffer picture(37, 11);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int alpha = (x * 255) / 36;
            std::uint8_t* pixel = picture.row(y) + 4 * x;
            pixel[0] = static_cast<std::uint8_t>(alpha * y / 10);
            pixel[1] = static_cast<std::uint8_t>(alpha * (10 - y) / 10);
            pixel[2] = static_cast<std::uint8_t>(alpha);
            pixel[3] = static_cast<std::uint8_t>(alpha);
        }
    }
    return picture;
}

} // namespace

TEST(FfmpegImageGenerator, givesThePictureInForceAtExactlyThatTime) {
    FfmpegImageGenerator generator = imageGenerator();
    for (const int n : {0, 1, 14, 15, 29, 59}) {
        const MediaTime time = MediaTime::fromSeconds((n + 0.5) / 30, 90000);
        const auto image = generator.copyImage(numberedMovie(), time, kUnbounded);
        ASSERT_TRUE(image) << image.error().description();
        EXPECT_EQ(numberIn(**image), n);
    }
}

TEST(FfmpegImageGenerator, aTimeBeforeTheFirstPictureGivesTheFirst) {
    const auto image = imageGenerator().copyImage(numberedMovie(), {-1, 1}, kUnbounded);
    ASSERT_TRUE(image);
    EXPECT_EQ(numberIn(**image), 0);
}

TEST(FfmpegImageGenerator, aTimePastTheEndIsAnError) {
    for (const double seconds : {2.0, 5.0}) {
        const auto image = imageGenerator().copyImage(numberedMovie(),
                                                      MediaTime::fromSeconds(seconds), kUnbounded);
        ASSERT_FALSE(image);
        EXPECT_EQ(image.error().kind, Kind::cannotDecode);
        EXPECT_EQ(image.error().reason, "it ends before the wanted time");
    }
}

TEST(FfmpegImageGenerator, reducesToFitAndNeverEnlarges) {
    FfmpegImageGenerator generator = imageGenerator();
    const auto sizeFor = [&](Size bounds) {
        const auto image = generator.copyImage(numberedMovie(), {1, 2}, bounds).value();
        return std::pair(image->width(), image->height());
    };
    EXPECT_EQ(sizeFor({64, 64}), std::pair(64, 48));
    EXPECT_EQ(sizeFor({640, 24}), std::pair(32, 24));
    EXPECT_EQ(sizeFor({640, 640}), std::pair(128, 96));
    EXPECT_EQ(sizeFor({1, 1}), std::pair(1, 1));
}

struct RotationCase {
    const char* tag;
    const char* quarters;
    int width;
    int height;
};

class FfmpegImageGeneratorRotation : public ::testing::TestWithParam<RotationCase> {};

/// The expected pictures are those that the ffmpeg program shows for the file.
TEST_P(FfmpegImageGeneratorRotation, appliesTheTag) {
    const RotationCase c = GetParam();
    const fs::path file = cornered(c.tag);
    const auto image = imageGenerator().copyImage(file, {0, 1}, kUnbounded);
    ASSERT_TRUE(image);
    EXPECT_EQ((*image)->width(), c.width);
    EXPECT_EQ((*image)->height(), c.height);
    EXPECT_EQ(quarters(**image), c.quarters);
    const fs::path shown = generated(fmt::format("shown-{}.png", c.tag),
                                     fmt::format("-i '{}' -frames:v 1", file.string()));
    EXPECT_EQ(quarters(*FfmpegImageFiles().readPng(shown).value()), c.quarters);
    const auto reduced = imageGenerator().copyImage(file, {0, 1}, {32, 32}).value();
    EXPECT_EQ(std::max(reduced->width(), reduced->height()), 32);
    EXPECT_EQ(quarters(*reduced), c.quarters);
}

INSTANTIATE_TEST_SUITE_P(Tags, FfmpegImageGeneratorRotation,
                         ::testing::Values(RotationCase{"0", "rgbb", 64, 32},
                                           RotationCase{"90", "gbrb", 32, 64},
                                           RotationCase{"180", "bbgr", 64, 32},
                                           RotationCase{"270", "brbg", 32, 64}));

TEST(FfmpegImageGenerator, tellsWhatIsWrongWithAFile) {
    FfmpegImageGenerator generator = imageGenerator();
    EXPECT_EQ(generator.copyImage("/nonexistent.mov", {0, 1}, kUnbounded).error().kind,
              Kind::notFound);
    const fs::path sound = generated("only-sound.m4a", "-f lavfi -i sine=440:d=1 -c:a aac");
    EXPECT_EQ(generator.copyImage(sound, {0, 1}, kUnbounded).error().kind, Kind::noVideoTrack);
}

TEST(FfmpegImageFiles, aPictureComesBackAsItWas) {
    const fs::path file = freshPath("round.png");
    const PixelBuffer picture = samplePicture();
    ASSERT_TRUE(FfmpegImageFiles().writePng(file, picture));
    const auto read = FfmpegImageFiles().readPng(file);
    ASSERT_TRUE(read) << read.error().description();
    ASSERT_EQ((*read)->width(), picture.width());
    ASSERT_EQ((*read)->height(), picture.height());
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width() * 4; ++x) {
            // A premultiplied value survives straight alpha: rounding goes both ways.
            EXPECT_EQ((*read)->row(y)[x], picture.row(y)[x]) << x << ", " << y;
        }
    }
}

TEST(FfmpegImageFiles, alphaIsStraightInTheFile) {
    PixelBuffer picture(1, 1);
    picture.row(0)[0] = 0;
    picture.row(0)[1] = 64;
    picture.row(0)[2] = 128;
    picture.row(0)[3] = 128;
    const fs::path file = freshPath("straight.png");
    ASSERT_TRUE(FfmpegImageFiles().writePng(file, picture));
    EXPECT_EQ(outputOf(fmt::format("ffmpeg -v error -i '{}' -f rawvideo -pix_fmt rgba - | "
                                   "od -An -tu1",
                                   file.string())),
              " 255 128   0 128");
}

struct PngCase {
    const char* format;
    int tolerance;
};

class FfmpegImageFilesFormat : public ::testing::TestWithParam<PngCase> {};

TEST_P(FfmpegImageFilesFormat, readsEveryColourType) {
    const auto [format, tolerance] = GetParam();
    const fs::path file = generated(
        fmt::format("type-{}.png", format),
        fmt::format("-f lavfi -i \"color=0x808080:s=5x3,format=rgba\" -frames:v 1 -pix_fmt {}",
                    format));
    const auto image = FfmpegImageFiles().readPng(file);
    ASSERT_TRUE(image) << image.error().description();
    EXPECT_EQ((*image)->width(), 5);
    EXPECT_EQ((*image)->height(), 3);
    for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR((*image)->row(2)[4 * 4 + k], 128, tolerance);
    }
    EXPECT_EQ((*image)->row(2)[4 * 4 + 3], 255);
}

INSTANTIATE_TEST_SUITE_P(Types, FfmpegImageFilesFormat,
                         ::testing::Values(PngCase{"rgb24", 0}, PngCase{"rgba", 0},
                                           PngCase{"gray", 1}, PngCase{"ya8", 1},
                                           PngCase{"rgb48be", 1}, PngCase{"rgba64be", 1},
                                           PngCase{"gray16be", 1}, PngCase{"monob", 128},
                                           PngCase{"pal8", 64}),
                         [](const auto& test) { return std::string(test.param.format); });

TEST(FfmpegImageFiles, refusesWhatIsNoPng) {
    FfmpegImageFiles files;
    EXPECT_EQ(files.readPng("/nonexistent.png").error().kind, Kind::notFound);
    EXPECT_EQ(files.readPng(mediaFolder()).error().kind, Kind::notMedia);
    const fs::path file = freshPath("bad.png");
    for (const std::string& bytes : {std::string(), std::string("\x89PNG\r\n\x1a\n"),
                                     std::string("This is a letter."), std::string(1000, '\xff')}) {
        writeBytes(file, bytes);
        EXPECT_EQ(files.readPng(file).error().kind, Kind::notMedia);
    }
}

TEST(FfmpegImageFiles, refusesGiantSizesBeforeAllocating) {
    const fs::path good = freshPath("good.png");
    ASSERT_TRUE(FfmpegImageFiles().writePng(good, samplePicture()));
    for (const std::string& size :
         {std::string("\x7f\xff\xff\xff\x7f\xff\xff\xff", 8), std::string("\0\0\0\0\0\0\0\x05", 8),
          std::string("\0\0\x40\x01\0\0\0\x01", 8), std::string("\0\0\x40\0\0\0\x40\x01", 8)}) {
        std::string bytes = bytesOf(good);
        bytes.replace(16, 8, size);
        const fs::path file = freshPath("giant.png");
        writeBytes(file, bytes);
        EXPECT_EQ(FfmpegImageFiles().readPng(file).error().reason, "its size is out of bounds");
    }
}

TEST(FfmpegImageFiles, survivesRandomDamageAndEveryCut) {
    const fs::path good = freshPath("good.png");
    ASSERT_TRUE(FfmpegImageFiles().writePng(good, samplePicture()));
    const std::string whole = bytesOf(good);
    const fs::path file = freshPath("damaged.png");
    std::mt19937 random(3);
    for (int i = 0; i < 300; ++i) {
        std::string bytes = whole;
        bytes[random() % bytes.size()] = static_cast<char>(random());
        writeBytes(file, bytes);
        (void)FfmpegImageFiles().readPng(file);
    }
    for (std::size_t size = 0; size < whole.size() - 30; size += 3) {
        writeBytes(file, whole.substr(0, size));
        EXPECT_FALSE(FfmpegImageFiles().readPng(file)) << size;
    }
}

TEST(FfmpegImageFiles, writingFailsWholly) {
    const auto missing =
        FfmpegImageFiles().writePng(mediaFolder() / "none" / "a.png", samplePicture());
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().kind, Kind::cannotWrite);
    EXPECT_EQ(missing.error().reason, "No such file or directory");
    EXPECT_EQ(FfmpegImageFiles().writePng(freshPath("e.png"), PixelBuffer()).error().kind,
              Kind::cannotEncode);
    const fs::path folder = freshPath("folder.png");
    fs::create_directory(folder);
    EXPECT_FALSE(FfmpegImageFiles().writePng(folder, samplePicture()));
    EXPECT_TRUE(fs::is_directory(folder));
    for (const auto& entry : fs::directory_iterator(mediaFolder())) {
        EXPECT_FALSE(entry.path().filename().string().starts_with(".folder.png")) << entry.path();
    }
}

} // namespace tavi
