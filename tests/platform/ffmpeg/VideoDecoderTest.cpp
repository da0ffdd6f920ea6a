#include "platform/ffmpeg/VideoDecoder.h"

#include "platform/ffmpeg/PictureRun.h"
#include "platform/ffmpeg/TestMedia.h"

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

TEST(VideoDecoder, tellsTheTimeOfThePictureThatFollows) {
    const auto decoder = opened(irregular("live.mov", "libx264 -bf 0"));
    ASSERT_TRUE(decoder);
    ASSERT_TRUE(decoder->next());
    int count = 1;
    for (auto told = decoder->timeOfNext(); told; told = decoder->timeOfNext()) {
        ASSERT_TRUE(decoder->next());
        ASSERT_EQ(decoder->time(), *told);
        ++count;
    }
    EXPECT_EQ(count, 2 * kRate - 5);
    EXPECT_FALSE(decoder->next()) << "nothing was told of the last one";
}

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
