#include "platform/ffmpeg/PlayerRig.h"

#include <cmath>
#include <set>

namespace tavi::testing {
namespace {

namespace fs = std::filesystem;

constexpr int kRate = 30;
constexpr int kSeconds = 4;
constexpr int kSeeks = 60;

/// Large noisy pictures with their numbers in a band across the middle, a key frame every half
/// second: too much to decode a stretch of them for each seek.
fs::path largeFilm() {
    return generated("dragged.mov",
                     "-f lavfi -i testsrc2=s=1280x720:r=30:d=4,noise=alls=40:allf=t " +
                         numberedSource(kRate, kSeconds) +
                         " -filter_complex \"[1]scale=1280:128:flags=neighbor[n];"
                         "[0][n]overlay=0:296,format=yuv420p\" -c:v libx264 -preset ultrafast "
                         "-coder 1 -qp 28 -g 15");
}

/// A pointer that is dragged over the timeline.
class PlayerDrag : public ::testing::Test, public PlayerRig {
protected:
    void SetUp() override { show(largeFilm()); }

    /// 60 seeks a second, over the whole film and back within a second, or the first of them.
    /// What was shown meanwhile:
    std::vector<int> drag(int seeks = kSeeks) {
        shown().clear();
        for (int i = 0; i < seeks; ++i) {
            const double share = 0.5 - 0.5 * std::cos(i * 2 * M_PI / kSeeks);
            player().seek(MediaTime::fromSeconds(share * (kSeconds - 0.1)));
            main.runFor(1.0 / kSeeks);
        }
        return shown();
    }
};

TEST_F(PlayerDrag, picturesFollowThePointer) {
    constexpr std::size_t kEnough = 12;
    std::size_t most = 0;
    for (int attempt = 0; attempt < 20 && most < kEnough; ++attempt) { // The machine may be busy.
        most = std::max(most, drag().size());
    }
    EXPECT_GE(most, kEnough) << "of 60 seeks in a second";
}

TEST_F(PlayerDrag, goesOverTheWholeFilm) {
    std::set<int> thirds;
    EXPECT_TRUE(main.runUntil([&] {
        for (const int number : drag()) {
            thirds.insert(number * 3 / (kRate * kSeconds));
        }
        return thirds.size() == 3;
    }));
}

TEST_F(PlayerDrag, endsExactlyWhereItIsLetGo) {
    for (const int frame : {7, 100, 101, 59, 14}) {
        drag(frame % 10 + 5);
        player().seek({frame, kRate});
        EXPECT_TRUE(waitForNumber(frame));
        main.runFor(0.05);
        EXPECT_EQ(number(), frame);
    }
}

/// Where there is no picture none of those on the way is left standing.
TEST_F(PlayerDrag, knowsWhereALaterTrackBegins) {
    open(PlayerItem{largeFilm(), DelayedTrack{{0, {}, {}}, {kSeconds, 1}, {2, 1}}});
    for (const int frame : {59, 70, 30, 100, 61}) {
        drag(frame % 10 + 5);
        player().seek({frame, kRate});
        const int wanted = frame < 2 * kRate ? kNoPicture : frame - 2 * kRate;
        EXPECT_TRUE(waitForNumber(wanted)) << frame << ": " << number();
        main.runFor(0.05);
        EXPECT_EQ(number(), wanted);
    }
}

} // namespace
} // namespace tavi::testing
