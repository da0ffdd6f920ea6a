#include "platform/ffmpeg/HostDeadline.h"
#include "platform/ffmpeg/PlayerRig.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <random>

namespace tavi::testing {
namespace {

namespace fs = std::filesystem;

constexpr int kRate = 30;
constexpr int kPictures = 60;

/// The pictures at which the alpha track has one.
constexpr std::array kAlphaPictures{0, 4, 9, 20, 21, 22, 37, 50};

/// The alpha that picture `n` of the alpha track has everywhere: above all colours of a numbered
/// picture, below what counts as opaque.
int alphaOf(int n) {
    return 230 + 3 * (n % 7);
}

int alphaInForce(int picture) {
    return alphaOf(*(std::upper_bound(kAlphaPictures.begin(), kAlphaPictures.end(), picture) - 1));
}

int alphaIn(const PixelBuffer& picture) {
    return picture.row(picture.height() / 2)[3];
}

/// `reordering`: how many pictures of either track may be decoded after a later one.
fs::path film(int reordering) {
    return generated(
        "follower.mov",
        numberedSource(kRate, 1.0 * kPictures / kRate) +
            fmt::format(" -f lavfi -i \"color=black:s=64x48:r={}:d=2,format=yuv420p,"
                        "geq=lum='230+3*mod(N,7)':cb=128:cr=128,select='eq(n,{})'\" -map 0 -map 1 "
                        "-fps_mode passthrough -pix_fmt yuv420p -c:v libx264 -bf {} -g 8 -qp 2 "
                        "-metadata:s:v:1 handler_name=Alpha",
                        kRate, fmt::join(kAlphaPictures, ")+eq(n,"), reordering));
}

class AlphaFollowed : public ::testing::TestWithParam<int>, public PlayerRig {
protected:
    void SetUp() override { open(film(GetParam())); }

    void expectAlpha() {
        EXPECT_NEAR(alphaIn(*player().currentPicture()), alphaInForce(number()), 1) << number();
    }
};

TEST_P(AlphaFollowed, isThatInForceWhereverAPlayerGoes) {
    std::mt19937 random(9);
    std::uniform_int_distribution<int> any(0, kPictures - 1);
    for (int i = 0; i < 60; ++i) {
        if (i % 3 == 0) {
            open(film(GetParam())); // Forgets what it has decoded.
        }
        const int n = any(random);
        player().seek({2 * n + 1, 2 * kRate});
        ASSERT_TRUE(waitForNumber(n)) << n << ": " << number();
        expectAlpha();
    }
}

TEST_P(AlphaFollowed, isThatInForceWhileItPlays) {
    int compared = 0;
    player().setPictureObserver([&] {
        ++compared;
        expectAlpha();
    });
    player().setRate(4, {0, 1}, hostNow());
    ASSERT_TRUE(waitForNumber(kPictures - 1));
    EXPECT_GT(compared, 1);
}

INSTANTIATE_TEST_SUITE_P(Reordering, AlphaFollowed, ::testing::Values(0, 2));

} // namespace
} // namespace tavi::testing
