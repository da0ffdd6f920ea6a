#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/ffmpeg/TestMedia.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace tavi {

namespace {

using namespace tavi::testing;
namespace fs = std::filesystem;

constexpr double kFps = 30;
constexpr const char* kX264 = "-c:v libx264 -preset veryfast -crf 8 -pix_fmt yuv420p";

/// 3 s at 30 fps, B-frames, key frames every 20 pictures.
fs::path bFrames() {
    return generated("bframes.mov", numberedSource(30, 3) + " " + kX264 + " -bf 3 -g 20");
}

fs::path hevcOpenGop() {
    return generated(
        "opengop.mov",
        numberedSource(30, 3) +
            " -c:v libx265 -preset veryfast -crf 8 -pix_fmt yuv420p -tag:v hvc1 "
            "-x265-params log-level=none:keyint=20:min-keyint=20:open-gop=1:bframes=4");
}

/// Where the packet with an index begins in the file.
std::streamoff positionOf(const fs::path& file, int packet) {
    return std::stol(outputOf(
        fmt::format("ffprobe -v error -show_entries packet=pos -of csv=p=0 '{}' | sed -n {}p",
                    file.string(), packet + 1)));
}

/// A numbered file at a steady rate: pictures first to last, each at its time.
void expectSteady(const std::vector<NumberedTime>& samples, int first, int last, double fps = kFps,
                  double offset = 0) {
    ASSERT_EQ(samples.size(), static_cast<std::size_t>(last - first + 1));
    for (int i = 0; i < static_cast<int>(samples.size()); ++i) {
        const NumberedTime& sample = samples[static_cast<std::size_t>(i)];
        EXPECT_EQ(sample.number, first + i);
        EXPECT_NEAR(sample.time, (first + i) / fps + offset, 1e-3);
    }
}

} // namespace

TEST(FfmpegVideoReader, givesEveryPictureOfAFileWithBFramesInOrder) {
    expectSteady(readNumbers(bFrames()), 0, 89);
}

TEST(FfmpegVideoReader, givesEveryPictureOfOpenGroupsInOrder) {
    expectSteady(readNumbers(hevcOpenGop()), 0, 89);
}

struct RangeCase {
    double start;
    double end;
    int first;
    int last;
};

class FfmpegVideoReaderRange : public ::testing::TestWithParam<RangeCase> {};

TEST_P(FfmpegVideoReaderRange, beginsWithThePictureInForceAndEndsBeforeItsEnd) {
    const auto [start, end, first, last] = GetParam();
    expectSteady(readNumbers(bFrames(), start, end), first, last);
    expectSteady(readNumbers(hevcOpenGop(), start, end), first, last);
}

INSTANTIATE_TEST_SUITE_P(Ranges, FfmpegVideoReaderRange,
                         ::testing::Values(RangeCase{0.0, 0.1, 0, 2},
                                           RangeCase{1.0, 1.5, 30, 44},   // on the grid
                                           RangeCase{1.01, 1.02, 30, 30}, // inside one picture
                                           RangeCase{0.65, 0.7, 19, 20},  // across a key frame
                                           RangeCase{1.32, 1.4, 39, 41},  // just before one
                                           RangeCase{1.999, 2.04, 59, 61},
                                           RangeCase{2.9, 9.0, 87, 89},
                                           RangeCase{7.0, 9.0, 89, 89}, // past the end
                                           RangeCase{-1.0, 0.05, 0, 1}));

TEST(FfmpegVideoReader, givesTheExactPictureAtEveryTime) {
    FfmpegMediaLibrary library = mediaLibrary();
    for (int i = 0; i < 90; i += 7) {
        EXPECT_EQ(numberIn(*readPicture(hevcOpenGop(), (i + 0.5) / kFps)), i);
        EXPECT_EQ(numberIn(*readPicture(bFrames(), (i + 0.5) / kFps)), i);
    }
}

TEST(FfmpegVideoReader, givesNothingForAnEmptyRange) {
    EXPECT_TRUE(readNumbers(bFrames(), 1, 1).empty());
    EXPECT_TRUE(readNumbers(bFrames(), 2, 1).empty());
}

TEST(FfmpegVideoReader, tellsItsStatus) {
    FfmpegMediaLibrary library = mediaLibrary();
    const auto asset = library.openAsset(bFrames());
    ASSERT_TRUE(asset);
    auto reader = library.makeVideoReader(*asset, asset->videoTracks[0], {{0, 600}, {60, 600}});
    ASSERT_TRUE(reader);
    EXPECT_EQ((*reader)->status(), AssetReaderStatus::reading);
    while ((*reader)->copyNextSample()) {
    }
    EXPECT_EQ((*reader)->status(), AssetReaderStatus::completed);
    EXPECT_FALSE((*reader)->copyNextSample());
}

TEST(FfmpegVideoReader, givesNothingMoreOnceCancelled) {
    FfmpegMediaLibrary library = mediaLibrary();
    const auto asset = library.openAsset(bFrames());
    ASSERT_TRUE(asset);
    auto reader = library.makeVideoReader(*asset, asset->videoTracks[0], {{0, 600}, {6000, 600}});
    ASSERT_TRUE(reader);
    ASSERT_TRUE((*reader)->copyNextSample());
    (*reader)->cancelReading();
    EXPECT_FALSE((*reader)->copyNextSample());
    EXPECT_EQ((*reader)->status(), AssetReaderStatus::cancelled);
}

TEST(FfmpegVideoReader, picturesOutliveTheReader) {
    const PixelBufferPtr picture = readPicture(bFrames(), 1.0);
    EXPECT_EQ(numberIn(*picture), 30);
}

TEST(FfmpegVideoReader, appliesAnEditListThatBeginsInsideTheMedia) {
    // Copied from 1.1 s on: the media begins at the key frame before (20), the
    // edit list hides what lies between.
    const fs::path file = generated(
        "edited.mov", fmt::format("-ss 1.1 -i '{}' -c copy -map 0:v", bFrames().string()));
    const auto samples = readNumbers(file);
    ASSERT_FALSE(samples.empty());
    EXPECT_EQ(samples.front().number, 33);
    EXPECT_NEAR(samples.front().time, 0, 0.002);
    EXPECT_EQ(samples.back().number, 89);
    EXPECT_EQ(samples.size(), 57U);
    const auto part = readNumbers(file, 1.0, 1.2);
    ASSERT_FALSE(part.empty());
    EXPECT_EQ(part.front().number, 63);
}

TEST(FfmpegVideoReader, keepsALateStart) {
    const fs::path file =
        generated("late.mov", fmt::format("-itsoffset 0.5 -i '{}' -c copy", bFrames().string()));
    expectSteady(readNumbers(file), 0, 89, kFps, 0.5);
    const auto early = readNumbers(file, 0.1, 0.55);
    ASSERT_EQ(early.size(), 2U); // None is in force at 0.1: the first after it.
    EXPECT_EQ(early[0].number, 0);
    EXPECT_TRUE(readNumbers(file, 0.1, 0.4).empty());
}

TEST(FfmpegVideoReader, keepsTheTimesOfAVariableRate) {
    const fs::path file =
        generated("variable.mov", numberedSource(60, 2) +
                                      " -vf \"select='eq(n,0)+eq(n,1)+eq(n,7)+eq(n,60)+"
                                      "eq(n,100)'\" -vsync vfr " +
                                      kX264);
    const auto samples = readNumbers(file);
    ASSERT_EQ(samples.size(), 5U);
    for (const NumberedTime& sample : samples) {
        EXPECT_NEAR(sample.time, sample.number / 60.0, 1e-3);
    }
    const auto part = readNumbers(file, 0.9, 1.1);
    ASSERT_EQ(part.size(), 2U);
    EXPECT_EQ(part[0].number, 7);
    EXPECT_EQ(part[1].number, 60);
}

TEST(FfmpegVideoReader, givesTheCodedPictureWhateverTheRotationTag) {
    const fs::path plain = generated("plain.mp4", numberedSource(30, 0.2) + " " + kX264);
    const fs::path file = generated(
        "turned.mov", fmt::format("-i '{}' -c copy -metadata:s:v:0 rotate=90", plain.string()));
    ASSERT_NE(
        outputOf(fmt::format("ffprobe -v error -show_streams '{}' | grep rotation", file.string())),
        "");
    const PixelBufferPtr picture = readPicture(file);
    EXPECT_EQ(picture->width(), 64);
    EXPECT_EQ(picture->height(), 48);
}

struct FormatCase {
    const char* name;
    const char* arguments;
};

class FfmpegVideoReaderFormat : public ::testing::TestWithParam<FormatCase> {};

TEST_P(FfmpegVideoReaderFormat, readsEveryKindOfPicture) {
    const FormatCase format = GetParam();
    const fs::path file = generated(fmt::format("format-{}.mkv", format.name),
                                    numberedSource(30, 0.5, "65x49") + " " + format.arguments);
    expectSteady(readNumbers(file), 0, 14);
    const PixelBufferPtr picture = readPicture(file, 0.4);
    ASSERT_EQ(picture->width(), 65);
    ASSERT_EQ(picture->height(), 49);
    for (int y = 0; y < picture->height(); ++y) {
        for (int x = 0; x < picture->width(); ++x) {
            ASSERT_EQ(picture->row(y)[4 * x + 3], 255) << x << ", " << y;
        }
        EXPECT_NEAR(picture->row(y)[4 * 1], picture->row(24)[4 * 16], 3);
        EXPECT_NEAR(picture->row(y)[4 * 64], picture->row(24)[4 * 48], 3);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, FfmpegVideoReaderFormat,
    ::testing::Values(FormatCase{"420", "-c:v ffv1 -pix_fmt yuv420p"},
                      FormatCase{"422", "-c:v ffv1 -pix_fmt yuv422p"},
                      FormatCase{"444", "-c:v libx264 -crf 4 -pix_fmt yuv444p"},
                      FormatCase{"nv12", "-c:v rawvideo -pix_fmt nv12"},
                      FormatCase{"full", "-c:v mjpeg -q:v 1 -pix_fmt yuvj420p"},
                      FormatCase{"ten", "-c:v ffv1 -pix_fmt yuv420p10le"},
                      FormatCase{"ten444", "-c:v libx264 -crf 4 -pix_fmt yuv444p10le"},
                      FormatCase{"rgb", "-c:v png -pix_fmt rgb24"},
                      FormatCase{"rgba", "-c:v png -pix_fmt rgba"}),
    [](const auto& test) { return test.param.name; });

struct ColourCase {
    const char* matrix; ///< ffmpeg's name.
    double red;         ///< Weights of the matrix.
    double blue;
    bool isFull;
    const char* format;
};

class FfmpegVideoReaderColour : public ::testing::TestWithParam<ColourCase> {};

/// The samples are computed from the matrix's definition and stored losslessly,
/// so that nobody's conversion but the reader's is at work.
TEST_P(FfmpegVideoReaderColour, turnsSamplesIntoColoursByTheTags) {
    const ColourCase c = GetParam();
    const std::array<std::array<int, 3>, 6> colours{
        {{255, 255, 255}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {200, 120, 40}, {10, 20, 30}}};
    for (const auto& rgb : colours) {
        const double y = c.red * rgb[0] + (1 - c.red - c.blue) * rgb[1] + c.blue * rgb[2];
        const double cb = (rgb[2] - y) / (2 * (1 - c.blue));
        const double cr = (rgb[0] - y) / (2 * (1 - c.red));
        const double lumaScale = c.isFull ? 1 : 219.0 / 255;
        const double chromaScale = c.isFull ? 1 : 224.0 / 255;
        const std::string name = fmt::format("colour-{}-{}-{}-{}-{}-{}.mkv", c.matrix, c.isFull,
                                             c.format, rgb[0], rgb[1], rgb[2]);
        const fs::path file = generated(
            name,
            fmt::format("-f lavfi -i \"color=black:s=32x32:r=10:d=0.1,format={},geq=lum={:.0f}:"
                        "cb={:.0f}:cr={:.0f}\" -c:v ffv1 -colorspace {} -color_range {}",
                        c.format, (c.isFull ? 0 : 16) + y * lumaScale,
                        std::min(128 + cb * chromaScale, 255.0),
                        std::min(128 + cr * chromaScale, 255.0), c.matrix, c.isFull ? "pc" : "tv"));
        const PixelBufferPtr picture = readPicture(file);
        const auto bgr = colourAt(*picture, 15, 15);
        EXPECT_NEAR(bgr[2], rgb[0], 3) << name;
        EXPECT_NEAR(bgr[1], rgb[1], 3) << name;
        EXPECT_NEAR(bgr[0], rgb[2], 3) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Matrices, FfmpegVideoReaderColour,
                         ::testing::Values(ColourCase{"bt709", 0.2126, 0.0722, false, "yuv420p"},
                                           ColourCase{"bt709", 0.2126, 0.0722, true, "yuv420p"},
                                           ColourCase{"smpte170m", 0.299, 0.114, false, "yuv420p"},
                                           ColourCase{"smpte170m", 0.299, 0.114, true, "yuv444p"},
                                           ColourCase{"bt709", 0.2126, 0.0722, false, "yuv444p"},
                                           // Untagged and below 720 lines: BT.601.
                                           ColourCase{"unknown", 0.299, 0.114, false, "yuv420p"}));

TEST(FfmpegVideoReader, skipsADamagedStretchAndReadsOn) {
    const fs::path whole =
        generated("whole.mov", numberedSource(30, 3, "160x120") + " " + kX264 + " -bf 0 -g 15");
    const fs::path damaged = freshPath("damaged.mov");
    fs::copy_file(whole, damaged);
    const std::streamoff place = positionOf(whole, 31);
    std::fstream file(damaged, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(place);
    for (int i = 0; i < 120; ++i) {
        file.put(static_cast<char>(0xff));
    }
    file.close();
    const auto samples = readNumbers(damaged);
    ASSERT_GE(samples.size(), 70U);
    EXPECT_EQ(samples.front().number, 0);
    EXPECT_EQ(samples.back().number, 89);
}

TEST(FfmpegVideoReader, readsACutFileAsFarAsItGoes) {
    const fs::path whole = generated("indexfirst.mov", numberedSource(30, 3, "160x120") + " " +
                                                           kX264 + " -movflags +faststart");
    const fs::path cut = freshPath("cut.mov");
    fs::copy_file(whole, cut);
    fs::resize_file(cut, static_cast<std::uintmax_t>(positionOf(whole, 60)) + 3);
    const auto samples = readNumbers(cut);
    EXPECT_GE(samples.size(), 55U);
    EXPECT_LE(samples.size(), 60U);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        EXPECT_NEAR(samples[i].time, static_cast<double>(samples[i].number) / kFps, 1e-3);
    }
}

TEST(FfmpegVideoReader, refusesATrackThatIsNotThere) {
    FfmpegMediaLibrary library = mediaLibrary();
    const auto asset = library.openAsset(bFrames());
    ASSERT_TRUE(asset);
    const auto reader = library.makeVideoReader(*asset, {7, {64, 48}}, {{0, 600}, {60, 600}});
    ASSERT_FALSE(reader);
    EXPECT_EQ(reader.error().kind, MediaError::Kind::noVideoTrack);
}

} // namespace tavi
