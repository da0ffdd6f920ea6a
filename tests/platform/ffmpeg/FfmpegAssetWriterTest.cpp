#include "media/VideoLimits.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/ffmpeg/TestMedia.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tavi {

namespace {

using namespace tavi::testing;
namespace fs = std::filesystem;
using Kind = MediaError::Kind;
using Status = AssetWriterStatus;

constexpr int kWidth = kPictureWidth;
constexpr int kHeight = kPictureHeight;

VideoSettings settings(FileType type, VideoCodec codec = VideoCodec::hevc) {
    return {codec, kWidth, kHeight, 2'000'000, 60, type == FileType::quickTimeMovie};
}

/// A writer with its one input, started.
struct Writing {
    Writing(const fs::path& path, FileType type, VideoSettings video)
        : writer(std::move(mediaLibrary().makeWriter(path, type).value())),
          input(writer->addVideoInput(video).value()) {
        const auto started = writer->startWriting();
        EXPECT_TRUE(started) << started.error().description();
        writer->startSession({0, 1});
    }
    Writing(const fs::path& path, FileType type) : Writing(path, type, settings(type)) {}

    bool append(const PixelBufferPtr& picture, MediaTime time) const {
        while (!input->isReadyForMoreMediaData() && writer->status() == Status::writing) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return input->append(picture, time);
    }

    std::unique_ptr<AssetWriter> writer;
    VideoWriterInput* input;
};

/// Names in a folder, hidden ones too.
std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

fs::path freshFolder(const std::string& name) {
    fs::path folder = freshPath(name);
    fs::create_directory(folder);
    return folder;
}

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream(path) << text;
}

std::string readText(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool holds(const fs::path& file, const std::string& bytes) {
    return readText(file).find(bytes) != std::string::npos;
}

/// 60 numbered pictures on the grid of 1/60 s.
void writeSixty(const fs::path& path, FileType type) {
    const Writing writing(path, type);
    for (int n = 0; n < 60; ++n) {
        EXPECT_TRUE(writing.append(numbered(n), {n * 10, 600}));
    }
    const auto finished = writing.writer->finishWriting();
    EXPECT_TRUE(finished) << finished.error().description();
    EXPECT_EQ(writing.writer->status(), Status::completed);
}

} // namespace

TEST(FfmpegAssetWriter, mp4HoldsEveryPictureAtItsTime) {
    const fs::path file = freshPath("grid.mp4");
    writeSixty(file, FileType::mp4);
    const auto samples = readNumbers(file);
    ASSERT_EQ(samples.size(), 60U);
    for (int n = 0; n < 60; ++n) {
        EXPECT_EQ(samples[static_cast<std::size_t>(n)].number, n);
        EXPECT_DOUBLE_EQ(samples[static_cast<std::size_t>(n)].time, n / 60.0);
    }
}

TEST(FfmpegAssetWriter, mp4IsTaggedAndExactlyOnTheGrid) {
    const fs::path file = freshPath("tags.mp4");
    writeSixty(file, FileType::mp4);
    EXPECT_EQ(probe(file, "stream=codec_name"), "hevc");
    EXPECT_EQ(probe(file, "stream=codec_tag_string"), "hvc1");
    EXPECT_EQ(probe(file, "stream=pix_fmt"), "yuv420p");
    EXPECT_EQ(probe(file, "stream=color_range"), "tv");
    EXPECT_EQ(probe(file, "stream=color_space"), "bt709");
    EXPECT_EQ(probe(file, "stream=color_transfer"), "bt709");
    EXPECT_EQ(probe(file, "stream=color_primaries"), "bt709");
    EXPECT_EQ(probe(file, "stream=r_frame_rate"), "60/1");
    EXPECT_EQ(probe(file, "stream=avg_frame_rate"), "60/1");
    EXPECT_EQ(probe(file, "stream=nb_frames"), "60");
    EXPECT_EQ(probe(file, "format=duration"), "1.000000");
    EXPECT_TRUE(holds(file, "colrnclx"));
    const std::string bytes = readText(file);
    EXPECT_LT(bytes.find("moov"), bytes.find("mdat"));
}

class FfmpegAssetWriterRates : public ::testing::TestWithParam<int> {};

TEST_P(FfmpegAssetWriterRates, everyRateOfExportsIsExact) {
    const int rate = GetParam();
    const fs::path file = freshPath("rate.mp4");
    VideoSettings video = settings(FileType::mp4);
    video.expectedFrameRate = rate;
    const Writing writing(file, FileType::mp4, video);
    for (int n = 0; n < 12; ++n) {
        EXPECT_TRUE(writing.append(numbered(n), MediaTime::fromSeconds(1.0 / rate * n, 600)));
    }
    ASSERT_TRUE(writing.writer->finishWriting());
    EXPECT_EQ(probe(file, "stream=r_frame_rate"), fmt::format("{}/1", rate));
    EXPECT_EQ(probe(file, "stream=avg_frame_rate"), fmt::format("{}/1", rate));
    EXPECT_EQ(mediaLibrary().openAsset(file)->duration, (MediaTime{12, rate}));
}

INSTANTIATE_TEST_SUITE_P(Rates, FfmpegAssetWriterRates, ::testing::Values(24, 25, 30, 50, 60));

TEST(FfmpegAssetWriter, movieIsPlainAndTaggedOnceFinished) {
    const fs::path folder = freshFolder("finished");
    const fs::path file = folder / "video.mov";
    writeSixty(file, FileType::quickTimeMovie);
    EXPECT_EQ(readNumbers(file).size(), 60U);
    EXPECT_EQ(probe(file, "stream=codec_tag_string"), "hvc1");
    EXPECT_EQ(probe(file, "stream=color_range"), "tv");
    EXPECT_EQ(probe(file, "stream=color_space"), "bt709");
    EXPECT_EQ(probe(file, "stream=color_transfer"), "bt709");
    EXPECT_EQ(probe(file, "stream=color_primaries"), "bt709");
    EXPECT_TRUE(holds(file, "colrncl"));
    EXPECT_EQ(boxesOf(file), "ftyp mdat moov");
    EXPECT_EQ(mediaLibrary().openAsset(file)->duration, (MediaTime{1, 1}));
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"video.mov"});
}

TEST(FfmpegAssetWriter, movieKeepsIrregularTimesOfTheHostClock) {
    const fs::path file = freshPath("irregular.mov");
    const Writing writing(file, FileType::quickTimeMovie);
    const std::int64_t start = 987'654'321'012'345;
    writing.writer->startSession(MediaTime::fromNanoseconds(start));
    std::vector<std::int64_t> times;
    std::int64_t time = start;
    for (int n = 0; n < 40; ++n) {
        times.push_back(time);
        EXPECT_TRUE(writing.append(numbered(n), MediaTime::fromNanoseconds(time)));
        time += 16'666'667 + (n % 7) * 13'131'313 + (n == 20 ? 3'000'000'000 : 0);
    }
    ASSERT_TRUE(writing.writer->finishWriting());
    const auto samples = readNumbers(file);
    ASSERT_EQ(samples.size(), times.size());
    for (std::size_t n = 0; n < times.size(); ++n) {
        EXPECT_EQ(samples[n].number, static_cast<int>(n));
        EXPECT_NEAR(samples[n].time, static_cast<double>(times[n] - start) * 1e-9, 6e-6);
    }
}

TEST(FfmpegAssetWriter, collidingTimesStayInOrder) {
    const fs::path file = freshPath("close.mov");
    const Writing writing(file, FileType::quickTimeMovie);
    for (int n = 0; n < 10; ++n) {
        EXPECT_TRUE(writing.append(numbered(n), MediaTime::fromNanoseconds(n * 1000)));
    }
    ASSERT_TRUE(writing.writer->finishWriting());
    EXPECT_EQ(readNumbers(file).size(), 10U);
}

TEST(FfmpegAssetWriter, aLateFirstPictureStaysLate) {
    for (const FileType type : {FileType::quickTimeMovie, FileType::mp4}) {
        const fs::path file = freshPath("latefirst.mov");
        const Writing writing(file, type);
        for (int n = 0; n < 30; ++n) {
            EXPECT_TRUE(writing.append(numbered(n), {300 + n * 10, 600}));
        }
        writing.writer->endSession({900, 600});
        ASSERT_TRUE(writing.writer->finishWriting());
        const auto samples = readNumbers(file);
        ASSERT_EQ(samples.size(), 30U);
        EXPECT_NEAR(samples.front().time, 0.5, 1e-6);
        EXPECT_NEAR(samples.back().time, 0.5 + 29 / 60.0, 1e-6);
        EXPECT_NEAR(mediaLibrary().openAsset(file)->duration.seconds(), 1.5, 1e-6);
    }
}

TEST(FfmpegAssetWriter, theLastPictureLastsUntilTheSessionEnds) {
    for (const FileType type : {FileType::quickTimeMovie, FileType::mp4}) {
        const fs::path file = freshPath("ended.mov");
        const Writing writing(file, type);
        writing.writer->startSession({7, 1});
        for (int n = 0; n < 60; ++n) {
            EXPECT_TRUE(writing.append(numbered(n), {7 * 60 + n, 60}));
        }
        writing.writer->endSession({25, 2});
        ASSERT_TRUE(writing.writer->finishWriting());
        EXPECT_EQ(mediaLibrary().openAsset(file)->duration, (MediaTime{55, 10}));
        // Where pictures are reordered the track's own length is rounded to one of them.
        EXPECT_NEAR(mediaLibrary().openAsset(file)->videoTracks.front().end.seconds(), 5.5,
                    2 / 60.0);
        EXPECT_EQ(readNumbers(file, 4, 5.4).size(), 1U);
    }
}

TEST(FfmpegAssetWriter, coloursComeBack) {
    for (const FileType type : {FileType::quickTimeMovie, FileType::mp4}) {
        const fs::path file = freshPath("colours.mov");
        const Writing writing(file, type);
        const std::array<std::array<int, 3>, 4> bgr{
            {{0, 0, 255}, {255, 0, 0}, {40, 120, 200}, {255, 255, 255}}};
        auto picture = std::make_shared<PixelBuffer>(kWidth, kHeight);
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const auto& colour = bgr[static_cast<std::size_t>(x * 4 / kWidth)];
                for (std::size_t k = 0; k < 3; ++k) {
                    picture->row(y)[x * 4 + static_cast<int>(k)] =
                        static_cast<std::uint8_t>(colour[k]);
                }
                picture->row(y)[x * 4 + 3] = 255;
            }
        }
        for (int n = 0; n < 10; ++n) {
            EXPECT_TRUE(writing.append(picture, {n, 60}));
        }
        ASSERT_TRUE(writing.writer->finishWriting());
        const PixelBufferPtr read = readPicture(file, 0.1);
        for (int i = 0; i < 4; ++i) {
            const auto colour = colourAt(*read, kWidth * (2 * i + 1) / 8, kHeight / 2);
            for (std::size_t k = 0; k < 3; ++k) {
                EXPECT_NEAR(colour[k], bgr[static_cast<std::size_t>(i)][k], 3) << i;
            }
        }
    }
}

TEST(FfmpegAssetWriter, aRepeatedPictureIsShownAgainThoughItsMemoryIsReused) {
    for (const FileType type : {FileType::quickTimeMovie, FileType::mp4}) {
        const fs::path file = freshPath("repeated.mov");
        const Writing writing(file, type);
        EXPECT_FALSE(writing.input->appendRepeat({0, 60})); // Nothing to repeat.
        auto picture = writing.input->makePixelBuffer();
        for (int n = 0; n < 60; ++n) {
            while (!writing.input->isReadyForMoreMediaData() || picture.use_count() > 1) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            drawNumber(*picture, n);
            const MediaTime time{n, 60};
            EXPECT_TRUE(n % 3 == 0 ? writing.append(picture, time)
                                   : writing.input->appendRepeat(time));
        }
        EXPECT_FALSE(writing.input->appendRepeat({59, 60}));
        ASSERT_TRUE(writing.writer->finishWriting());
        const auto samples = readNumbers(file);
        ASSERT_EQ(samples.size(), 60U);
        for (int n = 0; n < 60; ++n) {
            EXPECT_EQ(samples[static_cast<std::size_t>(n)].number, n / 3 * 3);
            EXPECT_NEAR(samples[static_cast<std::size_t>(n)].time, n / 60.0, 1e-5);
        }
    }
}

TEST(FfmpegAssetWriter, writesH264ForCameras) {
    const fs::path file = freshPath("camera.mov");
    const FileType type = FileType::quickTimeMovie;
    const Writing writing(file, type, settings(type, VideoCodec::h264));
    for (int n = 0; n < 30; ++n) {
        EXPECT_TRUE(writing.append(numbered(n), {n, 30}));
    }
    ASSERT_TRUE(writing.writer->finishWriting());
    EXPECT_EQ(probe(file, "stream=codec_name"), "h264");
    EXPECT_EQ(probe(file, "stream=codec_tag_string"), "avc1");
    EXPECT_EQ(readNumbers(file).size(), 30U);
}

TEST(FfmpegAssetWriter, refusesWhatIsOutOfOrderOrOfAnotherSize) {
    const fs::path file = freshPath("order.mov");
    const Writing writing(file, FileType::quickTimeMovie);
    EXPECT_TRUE(writing.append(numbered(0), {1, 10}));
    EXPECT_FALSE(writing.append(numbered(1), {1, 10}));
    EXPECT_FALSE(writing.append(numbered(1), {1, 20}));
    EXPECT_FALSE(writing.append(numbered(1), {-1, 20}));
    EXPECT_FALSE(writing.append(std::make_shared<PixelBuffer>(32, 32), {3, 10}));
    EXPECT_FALSE(writing.append(nullptr, {3, 10}));
    EXPECT_TRUE(writing.append(numbered(2), {2, 10}));
    writing.input->markAsFinished();
    EXPECT_FALSE(writing.input->isReadyForMoreMediaData());
    EXPECT_FALSE(writing.input->append(numbered(3), {3, 10}));
    ASSERT_TRUE(writing.writer->finishWriting());
    EXPECT_EQ(readNumbers(file).size(), 2U);
    EXPECT_EQ(writing.input->makePixelBuffer(), nullptr);
}

TEST(FfmpegAssetWriter, takesNothingBeforeTheSession) {
    const fs::path file = freshPath("nosession.mov");
    auto writer = mediaLibrary().makeWriter(file, FileType::quickTimeMovie).value();
    auto* input = writer->addVideoInput(settings(FileType::quickTimeMovie)).value();
    EXPECT_FALSE(input->append(numbered(0), {0, 1}));
    ASSERT_TRUE(writer->startWriting());
    EXPECT_FALSE(input->append(numbered(0), {0, 1}));
    ASSERT_TRUE(writer->finishWriting());
    EXPECT_EQ(writer->status(), Status::completed);
    EXPECT_FALSE(fs::exists(file)); // No picture, no file.
}

TEST(FfmpegAssetWriter, aFullQueueSaysSoAndNeverBlocks) {
    const fs::path file = freshPath("full.mov");
    VideoSettings video = settings(FileType::quickTimeMovie);
    video.width = 1280;
    video.height = 720;
    const Writing writing(file, FileType::quickTimeMovie, video);
    int refused = 0;
    for (int n = 0; n < 60; ++n) {
        const bool isReady = writing.input->isReadyForMoreMediaData();
        const auto picture = writing.input->makePixelBuffer();
        ASSERT_NE(picture, nullptr);
        // Repeats are not converted: whatever slows this thread down, they come faster than they
        // go.
        const bool isTaken =
            n == 0 ? writing.input->append(picture, {n, 60}) : writing.input->appendRepeat({n, 60});
        EXPECT_TRUE(isTaken || !isReady);
        refused += isTaken ? 0 : 1;
    }
    EXPECT_GT(refused, 0);
    ASSERT_TRUE(writing.writer->finishWriting());
    EXPECT_EQ(readNumbers(file).size(), 60U - static_cast<unsigned>(refused));
}

/// As after a hiccup of a busy machine: what a camera sent meanwhile comes at once, and is kept.
TEST(FfmpegAssetWriter, aBurstOfACamerasPicturesIsTaken) {
    constexpr int kBurst = 8;
    const fs::path file = freshPath("burst.mov");
    VideoSettings video = settings(FileType::quickTimeMovie);
    video.width = 640;
    video.height = 480;
    const Writing writing(file, FileType::quickTimeMovie, video);
    const auto picture = std::make_shared<PixelBuffer>(video.width, video.height);
    for (int n = 0; n < kBurst; ++n) {
        EXPECT_TRUE(writing.input->isReadyForMoreMediaData()) << n;
        EXPECT_TRUE(writing.input->append(picture, {n, 30})) << n;
    }
    ASSERT_TRUE(writing.writer->finishWriting());
    EXPECT_EQ(readNumbers(file).size(), std::size_t{kBurst});
}

TEST(FfmpegAssetWriter, aSlowEncoderIsGivenLittleToWaitForAtTheEnd) {
    constexpr int kInMemory = 7; // What the queue would hold of these pictures.
    VideoSettings video = settings(FileType::quickTimeMovie);
    video.width = 3840;
    video.height = 2160;
    const Writing writing(freshPath("slow.mov"), FileType::quickTimeMovie, video);
    const auto picture = std::make_shared<PixelBuffer>(video.width, video.height);
    std::uint32_t state = 1;
    const auto fillWithNoise = [&] {
        auto* words = reinterpret_cast<std::uint32_t*>(picture->data());
        std::generate_n(words, picture->stride() / 4 * static_cast<std::size_t>(video.height),
                        [&] { return state = state * 1664525 + 1013904223; });
    };
    int n = 0;
    for (; n < kInMemory; ++n) { // Until its pace is known.
        fillWithNoise();
        ASSERT_TRUE(writing.append(picture, {n, 60}));
    }
    int taken = 0;
    while (writing.input->isReadyForMoreMediaData()) {
        ASSERT_TRUE(writing.input->append(picture, {n + taken, 60}));
        ++taken;
    }
    EXPECT_LT(taken, kInMemory - 1);
    ASSERT_TRUE(writing.writer->finishWriting());
}

/// A recorder that is killed in its first second leaves something.
TEST(FfmpegAssetWriter, aTakesFirstPictureGoesToTheDiskByItself) {
    const fs::path file = freshPath("first.mov");
    const Writing writing(file, FileType::quickTimeMovie);
    for (int n = 0; n < 5; ++n) {
        EXPECT_TRUE(writing.append(numbered(n), {n, 60}));
    }
    std::string text;
    while ((text = readText(file)).find("trun") == std::string::npos) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const std::size_t count = text.find("trun") + 8; // behind the version and the flags
    ASSERT_LT(count + 4, text.size());
    EXPECT_EQ(text.substr(count, 4), std::string("\0\0\0\1", 4));
    ASSERT_TRUE(writing.writer->finishWriting());
    EXPECT_EQ(readNumbers(file).size(), 5U);
}

TEST(FfmpegAssetWriter, cancelLeavesNothing) {
    for (const FileType type : {FileType::quickTimeMovie, FileType::mp4}) {
        const fs::path folder = freshFolder("cancelled");
        const Writing writing(folder / "video.mov", type);
        for (int n = 0; n < 20; ++n) {
            EXPECT_TRUE(writing.append(numbered(n), {n, 60}));
        }
        writing.writer->cancelWriting();
        EXPECT_EQ(writing.writer->status(), Status::cancelled);
        EXPECT_FALSE(writing.input->isReadyForMoreMediaData());
        EXPECT_TRUE(namesIn(folder).empty());
    }
}

TEST(FfmpegAssetWriter, aMovieWhoseFolderWasDeletedMeanwhileIsTold) {
    const fs::path folder = freshFolder("deleted");
    const fs::path file = folder / "video.mov";
    const Writing writing(file, FileType::quickTimeMovie);
    EXPECT_TRUE(writing.append(numbered(0), {0, 600}));
    fs::remove_all(folder);
    const auto finished = writing.writer->finishWriting();
    ASSERT_FALSE(finished);
    EXPECT_EQ(finished.error().kind, Kind::cannotWrite);
    EXPECT_NE(finished.error().description().find(file.string()), std::string::npos);
    EXPECT_EQ(writing.writer->status(), Status::failed);
}

TEST(FfmpegAssetWriter, aWriterThatGoesAwayLeavesNothing) {
    const fs::path folder = freshFolder("dropped");
    { const Writing writing(folder / "video.mp4", FileType::mp4); }
    EXPECT_TRUE(namesIn(folder).empty());
}

TEST(FfmpegAssetWriter, cancelAfterCompletionChangesNothing) {
    const fs::path file = freshPath("done.mp4");
    const Writing writing(file, FileType::mp4);
    EXPECT_TRUE(writing.append(numbered(0), {0, 1}));
    ASSERT_TRUE(writing.writer->finishWriting());
    writing.writer->cancelWriting();
    EXPECT_EQ(writing.writer->status(), Status::completed);
    EXPECT_TRUE(fs::exists(file));
}

TEST(FfmpegAssetWriter, whatStandsAtTheTargetStaysUntilTheMp4IsWhole) {
    const fs::path folder = freshFolder("existing");
    const fs::path file = folder / "video.mp4";
    writeText(file, "the old film");
    {
        const Writing writing(file, FileType::mp4);
        EXPECT_TRUE(writing.append(numbered(0), {0, 1}));
        EXPECT_EQ(readText(file), "the old film");
        writing.writer->cancelWriting();
    }
    EXPECT_EQ(readText(file), "the old film");
    EXPECT_EQ(namesIn(folder).size(), 1U);
    writeSixty(file, FileType::mp4);
    EXPECT_EQ(readNumbers(file).size(), 60U);
    EXPECT_EQ(namesIn(folder).size(), 1U);
}

TEST(FfmpegAssetWriter, aCancelledOneLeavesAnotherOfTheSameTargetAlone) {
    const fs::path folder = freshFolder("twice");
    const fs::path file = folder / "video.mp4";
    const Writing cancelled(file, FileType::mp4);
    EXPECT_TRUE(cancelled.append(numbered(0), {0, 1}));
    const Writing next(file, FileType::mp4);
    EXPECT_TRUE(next.append(numbered(1), {0, 1}));
    cancelled.writer->cancelWriting();
    const auto finished = next.writer->finishWriting();
    EXPECT_TRUE(finished) << finished.error().description();
    const auto shown = readNumbers(file);
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].number, 1);
    EXPECT_EQ(namesIn(folder).size(), 1U);
}

TEST(FfmpegAssetWriter, tellsWhyAFileCanNotBeMade) {
    for (const FileType type : {FileType::quickTimeMovie, FileType::mp4}) {
        const fs::path missing = mediaFolder() / "no such folder" / "video.mov";
        auto writer = mediaLibrary().makeWriter(missing, type).value();
        ASSERT_TRUE(writer->addVideoInput(settings(type)));
        const auto started = writer->startWriting();
        ASSERT_FALSE(started);
        EXPECT_EQ(started.error().kind, Kind::cannotWrite);
        EXPECT_EQ(started.error().file, missing.string());
        EXPECT_EQ(started.error().reason, "No such file or directory");
        EXPECT_EQ(writer->status(), Status::failed);
        const auto finished = writer->finishWriting();
        ASSERT_FALSE(finished);
        EXPECT_EQ(finished.error().kind, Kind::cannotWrite);

        const fs::path folder = freshFolder("a folder.mov");
        auto other = mediaLibrary().makeWriter(folder, type).value();
        ASSERT_TRUE(other->addVideoInput(settings(type)));
        EXPECT_EQ(other->startWriting().error().reason, "Is a directory");
        EXPECT_TRUE(fs::is_directory(folder));
    }
}

TEST(FfmpegAssetWriter, refusesSizesThatNoEncoderTakes) {
    auto writer = mediaLibrary().makeWriter(freshPath("x.mp4"), FileType::mp4).value();
    for (const auto& [width, height] : {std::pair(161, 120), {14, 120}, {160, 0}}) {
        VideoSettings video = settings(FileType::mp4);
        video.width = width;
        video.height = height;
        const auto added = writer->addVideoInput(video);
        ASSERT_FALSE(added);
        EXPECT_EQ(added.error().kind, Kind::cannotEncode);
        EXPECT_NE(added.error().reason.find("even and at least 16"), std::string::npos);
    }
}

/// Pictures of one size, of a film or of a take.
class SmallestVideo : public ::testing::TestWithParam<std::tuple<FileType, int, int>> {};

TEST_P(SmallestVideo, isWritten) {
    const auto [type, width, height] = GetParam();
    const fs::path file = freshPath("small.mov");
    VideoSettings video = settings(type);
    video.width = width;
    video.height = height;
    video.realTime = video.hasAlpha = type == FileType::quickTimeMovie;
    const Writing writing(file, type, video);
    for (int n = 0; n < 3; ++n) {
        EXPECT_TRUE(writing.append(std::make_shared<PixelBuffer>(width, height), {n, 30}));
    }
    const auto finished = writing.writer->finishWriting();
    EXPECT_TRUE(finished) << finished.error().description();
    EXPECT_EQ(probe(file, "stream=width"), std::to_string(width));
    EXPECT_EQ(probe(file, "stream=height"), std::to_string(height));
}

INSTANTIATE_TEST_SUITE_P(Sizes, SmallestVideo,
                         ::testing::Combine(::testing::Values(FileType::quickTimeMovie,
                                                              FileType::mp4),
                                            ::testing::Values(kSmallestVideoSide, 30, 64),
                                            ::testing::Values(kSmallestVideoSide, 30, 64)));

TEST(FfmpegAssetWriter, aFullDeviceIsToldWhileWriting) {
    const fs::path link = freshPath("full-device.mov");
    fs::create_symlink("/dev/full", link);
    auto writer = mediaLibrary().makeWriter(link, FileType::quickTimeMovie).value();
    ASSERT_TRUE(writer->addVideoInput(settings(FileType::quickTimeMovie)));
    const auto started = writer->startWriting();
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().kind, Kind::diskFull);
    EXPECT_EQ(started.error().reason, "No space left on device");
    EXPECT_EQ(started.error().file, link.string());
}

/// A limit on the file size stands for a disk that fills up while writing. In
/// a process of its own, since the limit can't be taken back.
class FfmpegAssetWriterDeathTest : public ::testing::TestWithParam<FileType> {};

TEST_P(FfmpegAssetWriterDeathTest, aFileThatCanNotGrowFailsTheWriter) {
    ::testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const FileType type = GetParam();
    const fs::path folder = mediaFolder() / fmt::format("limited-{}", static_cast<int>(type));
    const fs::path file = folder / "video.mov";
    const auto writeUntilItFails = [&] {
        fs::create_directories(folder);
        writeText(file, "the old film");
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{400'000, 400'000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        VideoSettings video = settings(type);
        if (type == FileType::mp4) {
            video.bitRate = 20'000'000;
        }
        const Writing writing(file, type, video);
        int n = 0;
        while (n < 3000 && writing.append(noise(n), {n, 60})) {
            ++n;
            if (type == FileType::quickTimeMovie) { // At the pace of a take.
                std::this_thread::sleep_for(std::chrono::milliseconds(16));
            }
        }
        const auto finished = writing.writer->finishWriting();
        const bool isRight = n < 3000 && writing.writer->status() == Status::failed &&
                             !writing.input->isReadyForMoreMediaData() && !finished &&
                             finished.error().kind == Kind::cannotWrite &&
                             finished.error().reason == "File too large" &&
                             finished.error().file == file.string();
        const bool isClean = type == FileType::mp4
                                 ? readText(file) == "the old film" && namesIn(folder).size() == 1
                                 : readNumbers(file).size() > 10 && namesIn(folder).size() == 1;
        fs::remove_all(mediaFolder()); // This process made one of its own.
        std::_Exit(isRight && isClean ? 0 : (isRight ? 2 : 1));
    };
    EXPECT_EXIT(writeUntilItFails(), ::testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Types, FfmpegAssetWriterDeathTest,
                         ::testing::Values(FileType::quickTimeMovie, FileType::mp4));

namespace {

/// A child process writes `file` at 50 pictures a second; it is killed `wait`
/// after it has appended as many as `pictures`, and appends no more if `isStanding`.
void recordAndKill(const fs::path& file, int pictures, bool isStanding,
                   std::chrono::milliseconds wait) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const Writing writing(file, FileType::quickTimeMovie);
        const auto start = std::chrono::steady_clock::now();
        for (int n = 0; !isStanding || n < pictures; ++n) {
            std::this_thread::sleep_until(start + std::chrono::milliseconds(20) * n);
            writing.append(numbered(n), {n * 20, 1000});
            (void)!::write(pipe[1], "+", 1);
        }
        std::this_thread::sleep_for(std::chrono::seconds(60));
        std::_Exit(1);
    }
    char byte = 0;
    for (int n = 0; n < pictures; ++n) {
        ASSERT_EQ(::read(pipe[0], &byte, 1), 1);
    }
    std::this_thread::sleep_for(wait);
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(pipe[0]);
    ::close(pipe[1]);
}

} // namespace

TEST(FfmpegAssetWriterCrash, aKilledTakeHoldsAllButItsLastSecond) {
    const fs::path file = freshPath("killed.mov");
    recordAndKill(file, 125, false, std::chrono::milliseconds(0));
    const auto samples = readNumbers(file);
    ASSERT_GE(samples.size(), 75U); // The first 1.5 s of 2.5 s.
    for (int n = 0; n < static_cast<int>(samples.size()); ++n) {
        EXPECT_EQ(samples[static_cast<std::size_t>(n)].number, n);
        EXPECT_NEAR(samples[static_cast<std::size_t>(n)].time, n / 50.0, 1e-4);
    }
    const auto asset = mediaLibrary().openAsset(file);
    ASSERT_TRUE(asset);
    EXPECT_GE(asset->duration.seconds(), samples.back().time);
}

TEST(FfmpegAssetWriterCrash, aStandingScreenReachesTheDiskWithoutALaterPicture) {
    const fs::path file = freshPath("standing.mov");
    recordAndKill(file, 30, true, std::chrono::milliseconds(1200));
    EXPECT_EQ(readNumbers(file).size(), 30U);
}

TEST(FfmpegAssetWriter, picturesAfterAPauseKeepTheirTimes) {
    const fs::path file = freshPath("paused.mov");
    const Writing writing(file, FileType::quickTimeMovie);
    int n = 0;
    for (const int at : {0, 20, 40, 1400, 1420, 3000}) {
        EXPECT_TRUE(writing.append(numbered(n++), {at, 1000}));
        if (at == 40 || at == 1420) { // Long enough for the pause to be written as one.
            std::this_thread::sleep_for(std::chrono::milliseconds(900));
        }
    }
    writing.writer->endSession({4, 1});
    const auto growing = readNumbers(file); // Readable while it is written.
    EXPECT_GE(growing.size(), 5U);
    EXPECT_NEAR(growing.at(3).time, 1.4, 1e-4);
    ASSERT_TRUE(writing.writer->finishWriting());
    const auto samples = readNumbers(file);
    ASSERT_EQ(samples.size(), 6U);
    EXPECT_NEAR(samples[2].time, 0.04, 1e-4);
    EXPECT_NEAR(samples[3].time, 1.4, 1e-4);
    EXPECT_NEAR(samples[4].time, 1.42, 1e-4);
    EXPECT_NEAR(samples[5].time, 3.0, 1e-4);
    EXPECT_EQ(mediaLibrary().openAsset(file)->duration, (MediaTime{4, 1}));
}

TEST(EncoderChoice, reportsEveryEncoderWithItsReason) {
    const auto report = EncoderChoice::shared().report(settings(FileType::mp4));
    ASSERT_EQ(report.size(), 4U);
    EXPECT_EQ(report[0].name, "hevc_nvenc");
    EXPECT_EQ(report[1].name, "hevc_qsv");
    EXPECT_EQ(report[2].name, "hevc_vaapi");
    EXPECT_EQ(report[3].name, "libx265");
    EXPECT_FALSE(report[3].isHardware);
    for (const EncoderTrial& trial : report) {
        EXPECT_EQ(trial.works, trial.reason.empty()) << trial.name;
    }
}

TEST(EncoderChoice, aSecondLookCostsNothing) {
    EncoderChoice choice;
    (void)choice.report(settings(FileType::mp4));
    const auto start = std::chrono::steady_clock::now();
    (void)choice.report(settings(FileType::mp4));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2));
}

} // namespace tavi
