#include "platform/ffmpeg/PlayerRig.h"

#include <fmt/format.h>

#include <random>

namespace tavi::testing {
namespace {

namespace fs = std::filesystem;

constexpr MediaTime kTick{1, MediaTime::kNanoseconds};

struct Film {
    const char* name;
    std::string arguments;
};

std::vector<Film> films() {
    const std::string source = numberedSource(30, 4);
    return {
        {"reordered.mov", source + " -pix_fmt yuv420p -c:v libx264 -bf 3 -g 40 -preset veryfast"},
        {"pyramid.mp4", source + " -pix_fmt yuv420p -c:v libx264 -bf 8 -g 60 -x264-params "
                                 "b-adapt=0:b-pyramid=normal -preset veryfast"},
        {"hevc.mp4", source + " -pix_fmt yuv420p -c:v libx265 -tag:v hvc1 -preset superfast "
                              "-x265-params log-level=none:keyint=50:bframes=4"},
        {"onlyforward.mov", source + " -pix_fmt yuv420p -c:v libx264 -bf 0 -g 250"},
        {"irregular.mov",
         source + " -vf \"select='not(eq(mod(n,5),1))*not(between(n,40,70))'\" -fps_mode vfr "
                  "-pix_fmt yuv420p -c:v libx264 -bf 2 -g 30 -video_track_timescale 600"},
        {"late.mov", "-itsoffset 0.7 " + source + " -pix_fmt yuv420p -c:v libx264 -g 30"},
        {"stillpictures.avi", source + " -c:v mjpeg -q:v 2"},
        {"webm.mkv", source + " -pix_fmt yuv420p -c:v libx264 -bf 2 -g 25"},
    };
}

class PlayerSeek : public ::testing::TestWithParam<Film>, public PlayerRig {
protected:
    /// Goes to a time and waits for the picture that the film has there.
    void expectAt(MediaTime time) {
        player().seek(time);
        const int wanted = content->at(time).number;
        ASSERT_TRUE(waitForNumber(wanted)) << "at " << time.seconds() << ": " << number();
        if (expected.back() != wanted) {
            expected.push_back(wanted);
        }
    }

    void SetUp() override {
        const fs::path file = generated(GetParam().name, GetParam().arguments);
        content.emplace(file);
        show(file);
        ASSERT_EQ(number(), content->at({0, 1}).number);
        expected = {number()};
    }

    MediaTime timeOf(std::size_t n) const { return content->pictures()[n].time; }

    std::optional<FilmContent> content;
    std::vector<int> expected; ///< What is shown when nothing but what is asked for is.
};

TEST_P(PlayerSeek, showsEveryPictureAtItsTime) {
    for (std::size_t n = 0; n < content->pictures().size(); ++n) {
        ASSERT_NO_FATAL_FAILURE(expectAt(timeOf(n)));
    }
    EXPECT_EQ(shown(), expected);
}

TEST_P(PlayerSeek, showsEveryPictureBackwards) {
    for (std::size_t n = content->pictures().size(); n-- > 0;) {
        ASSERT_NO_FATAL_FAILURE(expectAt(timeOf(n)));
    }
    EXPECT_EQ(shown(), expected);
}

/// The last moment of one picture and the first of the next differ by nothing else.
TEST_P(PlayerSeek, changesThePictureExactlyAtItsTime) {
    std::mt19937 random(3);
    std::uniform_int_distribution<std::size_t> any(1, content->pictures().size() - 1);
    for (int i = 0; i < 25; ++i) {
        const MediaTime time = timeOf(any(random));
        ASSERT_NO_FATAL_FAILURE(expectAt(time - kTick));
        ASSERT_NO_FATAL_FAILURE(expectAt(time));
        ASSERT_NO_FATAL_FAILURE(expectAt(time + kTick));
    }
    EXPECT_EQ(shown(), expected);
}

TEST_P(PlayerSeek, findsRandomTimes) {
    std::mt19937 random(4);
    std::uniform_int_distribution<std::int64_t> any(-100, 600 * 5);
    for (int i = 0; i < 60; ++i) {
        ASSERT_NO_FATAL_FAILURE(expectAt({any(random), 600}));
    }
    EXPECT_EQ(shown(), expected);
}

TEST_P(PlayerSeek, theNewestOfManyWins) {
    std::mt19937 random(5);
    std::uniform_int_distribution<std::int64_t> any(0, 600 * 4);
    for (int burst = 0; burst < 20; ++burst) {
        MediaTime last;
        for (int i = 0; i < 30; ++i) {
            last = {any(random), 600};
            player().seek(last);
        }
        EXPECT_EQ(player().currentTime(), std::min(last, content->length()));
        ASSERT_NO_FATAL_FAILURE(expectAt(last));
    }
}

INSTANTIATE_TEST_SUITE_P(Films, PlayerSeek, ::testing::ValuesIn(films()), [](const auto& film) {
    return fs::path(film.param.name).stem().string();
});

} // namespace
} // namespace tavi::testing
