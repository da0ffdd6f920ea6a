#include "platform/ffmpeg/VideoDecoder.h"

#include "platform/ffmpeg/PictureRun.h"
#include "platform/ffmpeg/TestMedia.h"
#include "support/Eventually.h"

#include <gtest/gtest.h>

namespace tavi::testing {
namespace {

constexpr int kRate = 30;

/// Pictures at unequal distances, a key frame every ten.
std::filesystem::path irregular(const std::string& ending, const std::string& encoder) {
    return generated("decoder-" + ending,
                     numberedSource(kRate, 2) +
                         " -vf \"select='not(between(n,15,17)+between(n,29,30))'\" -fps_mode "
                         "passthrough -pix_fmt yuv420p -g 10 -c:v " +
                         encoder);
}

std::unique_ptr<VideoDecoder> opened(const std::filesystem::path& film) {
    auto decoder = VideoDecoder::open(film, 0, DecoderUse::jumps);
    return decoder ? std::move(*decoder) : nullptr;
}

/// Fails the test unless each of a film's pictures tells the time of the next, the last nothing.
void expectAllTold(const std::filesystem::path& film, int pictures) {
    const auto decoder = opened(film);
    ASSERT_TRUE(decoder);
    ASSERT_TRUE(decoder->next());
    int count = 1;
    for (auto told = decoder->timeOfNext(); told; told = decoder->timeOfNext()) {
        ASSERT_TRUE(decoder->next());
        ASSERT_EQ(decoder->time(), *told);
        ++count;
    }
    EXPECT_EQ(count, pictures);
    EXPECT_FALSE(decoder->next()) << "nothing was told of the last one";
}

TEST(VideoDecoder, tellsTheTimeOfThePictureThatFollows) {
    expectAllTold(irregular("live.mov", "libx264 -bf 0"), 2 * kRate - 5);
}

class RecordedFilm : public ::testing::TestWithParam<bool> {};

TEST_P(RecordedFilm, tellsTheTimesOfItsPictures) {
    const auto film = freshPath("recorded.mov");
    const auto writer = mediaLibrary().makeWriter(film, FileType::quickTimeMovie).value();
    VideoWriterInput* input = writer
                                  ->addVideoInput({.width = kPictureWidth,
                                                   .height = kPictureHeight,
                                                   .bitRate = 1'000'000,
                                                   .expectedFrameRate = 60,
                                                   .realTime = true,
                                                   .hasAlpha = GetParam()})
                                  .value();
    ASSERT_TRUE(writer->startWriting());
    writer->startSession({7, 1});
    constexpr int kPictures = 40;
    for (int n = 0; n < kPictures; ++n) {
        const MediaTime time = MediaTime{7, 1} + MediaTime{n * n, 600};
        ASSERT_TRUE(test::eventually([&] { return input->isReadyForMoreMediaData(); }));
        ASSERT_TRUE(n % 4 == 3 ? input->appendRepeat(time) : input->append(numbered(n), time));
    }
    writer->endSession({12, 1});
    ASSERT_TRUE(writer->finishWriting());
    expectAllTold(film, kPictures);
}

INSTANTIATE_TEST_SUITE_P(Alpha, RecordedFilm, ::testing::Bool());

TEST(VideoDecoder, tellsNoTimesWhereTheIndexDoesNot) {
    const std::string live = "libx264 -bf 0";
    const std::string fragments = live + " -movflags frag_keyframe+empty_moov";
    for (const auto& film :
         {irregular("reordered.mov", "libx264 -bf 2"), irregular("cues.mkv", live),
          irregular("fragments.mp4", fragments), irregular("none.ts", live)}) {
        const auto decoder = opened(film);
        ASSERT_TRUE(decoder);
        while (decoder->next()) {
            EXPECT_EQ(decoder->timeOfNext(), std::nullopt) << film;
        }
    }
}

TEST(PictureRun, aPictureIsInForceUntilItsEndBeforeTheNextOneIsThere) {
    const auto picture = [](MediaTime time, std::optional<MediaTime> end) {
        return DecodedPicture{time, std::shared_ptr<const AVFrame>(av_frame_alloc(), FreeFrame()),
                              end};
    };
    PictureRun run;
    run.append(picture({0, 30}, std::nullopt), {});
    EXPECT_EQ(run.inForce({0, 30}), nullptr) << "nobody knows how long";
    run.append(picture({1, 30}, MediaTime{4, 30}), {});
    ASSERT_TRUE(run.inForce({7, 60}));
    EXPECT_EQ(run.inForce({7, 60})->time, (MediaTime{1, 30}));
    EXPECT_EQ(run.inForce({4, 30}), nullptr);
    run.endTrack();
    ASSERT_TRUE(run.inForce({4, 30})) << "the last one is in force for ever";
}

} // namespace
} // namespace tavi::testing
