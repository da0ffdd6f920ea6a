#include "platform/ffmpeg/PlayerRig.h"
#include "platform/ffmpeg/TestMedia.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tavi {

namespace {

using namespace tavi::testing;
namespace fs = std::filesystem;

constexpr int kWidth = 320;
constexpr int kHeight = 200;

/// What coding and the way over 4:2:0 may change in plain places.
constexpr int kNoise = 6;

constexpr std::uint32_t kWindow = 0xFF3070B0; ///< 0xAARRGGBB, premultiplied, as all below.
constexpr std::uint32_t kGlass = 0x80402010;
constexpr std::uint32_t kHole = 0;

/// A window whose left third is opaque, the middle translucent, the right one a hole; a stripe as
/// wide as the picture is opaque from row `top` on.
PixelBufferPtr window(int top) {
    auto picture = std::make_shared<PixelBuffer>(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(picture->row(y));
        for (int x = 0; x < kWidth; ++x) {
            const std::uint32_t part = x < 100 ? kWindow : x < 200 ? kGlass : kHole;
            row[x] = y >= top && y < top + 40 ? kWindow : part;
        }
    }
    return picture;
}

VideoSettings settings() {
    return {.width = kWidth,
            .height = kHeight,
            .bitRate = 4'000'000,
            .expectedFrameRate = 60,
            .realTime = true,
            .hasAlpha = true};
}

/// Six pictures, a fifth of a second apart; the stripe moves at the fourth.
void append(VideoWriterInput& input) {
    for (int n = 0; n < 6; ++n) {
        while (!input.isReadyForMoreMediaData()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        EXPECT_TRUE(input.append(window(n < 3 ? 0 : 120), {n, 5}));
    }
}

void write(const fs::path& file) {
    const auto writer = mediaLibrary().makeWriter(file, FileType::quickTimeMovie).value();
    VideoWriterInput* input = writer->addVideoInput(settings()).value();
    ASSERT_TRUE(writer->startWriting());
    writer->startSession({0, 1});
    append(*input);
    writer->endSession({2, 1});
    ASSERT_TRUE(writer->finishWriting());
}

fs::path written() {
    const fs::path file = mediaFolder() / "alpha.mov";
    if (!fs::exists(file)) {
        write(file);
    }
    return file;
}

/// Fails the test unless the pixel is about `wanted`; plain alpha has to be exact.
void expectPixel(const PixelBuffer& image, int x, int y, std::uint32_t wanted) {
    const std::uint8_t* pixel = image.row(y) + static_cast<std::ptrdiff_t>(x) * 4;
    for (int i = 0; i < 4; ++i) {
        const int channel = static_cast<int>(wanted >> (8 * i)) & 0xFF;
        const bool isExact = i == 3 && (channel == 0 || channel == 255);
        EXPECT_NEAR(pixel[i], channel, isExact ? 0 : kNoise) << x << "," << y << " channel " << i;
    }
}

void expectWindow(const PixelBuffer& image, int top, int scale = 1) {
    ASSERT_EQ(image.width(), kWidth / scale);
    expectPixel(image, 50 / scale, 80 / scale, kWindow);
    expectPixel(image, 150 / scale, 80 / scale, kGlass);
    expectPixel(image, 260 / scale, 80 / scale, kHole);
    expectPixel(image, 260 / scale, (top + 20) / scale, kWindow);
    expectPixel(image, 260 / scale, (140 - top) / scale, kHole);
}

std::string streams(const fs::path& file, const std::string& entries) {
    return outputOf("ffprobe -v error -show_entries " + entries + " -of compact=p=0 '" +
                    file.string() + "'");
}

} // namespace

TEST(AlphaTrack, isASecondOneThatPlayersDoNotShow) {
    const fs::path file = written();
    EXPECT_EQ(streams(file, "stream=index,codec_name,codec_tag_string,color_range"),
              "index=0|codec_name=hevc|codec_tag_string=hvc1|color_range=tv\n"
              "index=1|codec_name=hevc|codec_tag_string=hvc1|color_range=pc");
    EXPECT_EQ(streams(file, "stream_disposition=default"),
              "disposition:default=1\ndisposition:default=0");
    EXPECT_EQ(streams(file, "stream_tags=handler_name"),
              "tag:handler_name=VideoHandler\ntag:handler_name=Alpha");
    const std::string chosen = outputOf("ffmpeg -nostdin -i '" + file.string() +
                                        "' -f null - 2>&1 | grep -o 'Stream #0:. -> #0:0'");
    EXPECT_EQ(chosen, "Stream #0:0 -> #0:0");
}

TEST(AlphaTrack, isMonochrome) {
    const std::string planes =
        outputOf("ffmpeg -nostdin -v error -i '" + written().string() +
                 "' -map 0:1 -vf extractplanes=u -f rawvideo -pix_fmt gray - | od -An -tu1 -v | "
                 "tr -s ' ' '\\n' | sort -u | paste -sd' '");
    EXPECT_EQ(planes, " 128");
}

TEST(AlphaTrack, hasPicturesOnlyWhereItChanges) {
    EXPECT_EQ(streams(written(), "packet=pts_time -select_streams 0"),
              "pts_time=0.000000\npts_time=0.200000\npts_time=0.400000\n"
              "pts_time=0.600000\npts_time=0.800000\npts_time=1.000000");
    EXPECT_EQ(streams(written(), "packet=pts_time -select_streams 1"),
              "pts_time=0.000000\npts_time=0.600000");
    EXPECT_EQ(probe(written(), "format=duration"), "2.000000");
}

TEST(AlphaTrack, comesBackWithThePictures) {
    const auto asset = mediaLibrary().openAsset(written()).value();
    ASSERT_EQ(asset.videoTracks.size(), 1U) << "alpha is no picture of its own";
    EXPECT_EQ(asset.duration, (MediaTime{2, 1}));
    const auto reader =
        mediaLibrary().makeVideoReader(asset, asset.videoTracks[0], {{0, 1}, {2, 1}}).value();
    for (int n = 0; n < 6; ++n) {
        const auto sample = reader->copyNextSample();
        ASSERT_TRUE(sample);
        expectWindow(*sample->image, n < 3 ? 0 : 120);
    }
    EXPECT_FALSE(reader->copyNextSample());
}

class AlphaAt : public ::testing::TestWithParam<double> {};

TEST_P(AlphaAt, isThatInForce) {
    const double time = GetParam();
    expectWindow(*readPicture(written(), time), time < 0.6 ? 0 : 120);
}

INSTANTIATE_TEST_SUITE_P(Times, AlphaAt, ::testing::Values(0.0, 0.3, 0.59, 0.6, 1.1, 1.9, 0.1));

TEST(AlphaTrack, isInSmallPicturesToo) {
    const auto image = imageGenerator().copyImage(written(), {1, 2}, {kWidth / 2, kHeight / 2});
    ASSERT_TRUE(image) << image.error().description();
    expectWindow(**image, 0, 2);
}

TEST(AlphaTrack, isSeenInAPlayerWhereverItGoes) {
    PlayerRig rig;
    rig.open(written());
    for (const int tenths : {0, 7, 2, 11, 5, 6, 0}) {
        const int top = tenths < 6 ? 0 : 120;
        rig.player().seek({tenths, 10});
        EXPECT_TRUE(rig.main.runUntil([&] {
            const PixelBufferPtr shown = rig.player().currentPicture();
            return shown && shown->row(top + 20)[260 * 4 + 3] == 255 &&
                   shown->row(140 - top)[260 * 4 + 3] == 0;
        })) << tenths;
        expectWindow(*rig.player().currentPicture(), top);
    }
}

TEST(AlphaTrack, aRepeatedPictureKeepsItsAlpha) {
    const fs::path file = freshPath("repeated.mov");
    const auto writer = mediaLibrary().makeWriter(file, FileType::quickTimeMovie).value();
    VideoWriterInput* input = writer->addVideoInput(settings()).value();
    EXPECT_FALSE(input->append(window(0), {0, 1})) << "not before the session";
    ASSERT_TRUE(writer->startWriting());
    writer->startSession({0, 1});
    EXPECT_TRUE(input->append(window(0), {0, 1}));
    EXPECT_TRUE(input->appendRepeat({1, 1}));
    EXPECT_FALSE(input->append(window(0), {1, 1})) << "not after the last";
    input->markAsFinished();
    EXPECT_FALSE(input->append(window(0), {2, 1}));
    ASSERT_TRUE(writer->finishWriting());
    expectWindow(*readPicture(file, 1), 0);
}

TEST(AlphaTrack, aKilledWriterLeavesBoth) {
    const fs::path file = freshPath("killed-alpha.mov");
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const auto writer = mediaLibrary().makeWriter(file, FileType::quickTimeMovie).value();
        VideoWriterInput* input = writer->addVideoInput(settings()).value();
        if (writer->startWriting()) {
            writer->startSession({0, 1});
            append(*input);
        }
        std::this_thread::sleep_for(std::chrono::seconds(100));
        std::_Exit(1);
    }
    const auto lastIsThere = [&] {
        const auto asset = mediaLibrary().openAsset(file);
        return asset && asset->duration > MediaTime{1, 1} &&
               streams(file, "packet=stream_index,pts_time").find("1|pts_time=0.6") !=
                   std::string::npos;
    };
    for (int i = 0; i < 600 && !lastIsThere(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_NE(boxesOf(file), "ftyp mdat moov") << "it is in fragments";
    expectWindow(*readPicture(file, 0.5), 0);
    expectWindow(*readPicture(file, 1), 120);
}

TEST(AlphaTrack, aSecondTrackOfOthersIsNoAlpha) {
    const fs::path file =
        generated("two-tracks.mov", "-f lavfi -i color=red:s=320x200:r=5:d=1 -f lavfi -i "
                                    "color=black:s=320x200:r=5:d=1 -map 0 -map 1 -c:v libx264");
    EXPECT_EQ(mediaLibrary().openAsset(file)->videoTracks.size(), 2U);
    const auto picture = readPicture(file);
    expectPixel(*picture, 5, 5, 0xFFFE0000);
}

} // namespace tavi
