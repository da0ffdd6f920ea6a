#include "media/SoundInterpolator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace tavi {
namespace {

/// Two sines, the right one a quarter turn ahead.
std::array<float, 2> sines(double frequency, double moment) {
    const double angle = 2 * std::numbers::pi * frequency * moment / kPlayedRate;
    return {static_cast<float>(std::sin(angle)), static_cast<float>(std::cos(angle))};
}

std::vector<float> moments(double frequency, std::int64_t from, std::int64_t to) {
    std::vector<float> samples;
    for (std::int64_t n = from; n < to; ++n) {
        const auto value = sines(frequency, static_cast<double>(n));
        samples.insert(samples.end(), value.begin(), value.end());
    }
    return samples;
}

class SoundInterpolatorPitch : public testing::TestWithParam<double> {};

TEST_P(SoundInterpolatorPitch, givesTheSineBetweenItsMoments) {
    const double frequency = GetParam();
    SoundInterpolator sound;
    sound.restart(100);
    sound.append(moments(frequency, 100, 900));
    double worst = 0;
    for (double position = 150; position < 850; position += 0.377) {
        std::array<float, 2> got{};
        sound.value(position, got.data());
        const auto expected = sines(frequency, position);
        worst = std::max<double>(
            {worst, std::abs(got[0] - expected[0]), std::abs(got[1] - expected[1])});
    }
    EXPECT_LT(worst, 0.001) << "-60 dB";
}

INSTANTIATE_TEST_SUITE_P(Hearable, SoundInterpolatorPitch,
                         testing::Values(50.0, 440.0, 5000.0, 12000.0, 16000.0));

TEST(SoundInterpolator, givesEachMomentAsItIs) {
    SoundInterpolator sound;
    sound.restart(0);
    sound.append(moments(1234, 0, 300));
    for (std::int64_t n = 40; n < 250; ++n) {
        std::array<float, 2> got{};
        sound.value(static_cast<double>(n), got.data());
        EXPECT_NEAR(got[0], sines(1234, static_cast<double>(n))[0], 1e-6);
    }
}

TEST(SoundInterpolator, isSilentBeforeAndAfter) {
    SoundInterpolator sound;
    sound.restart(0);
    sound.append(moments(1000, 0, 100));
    for (const double position : {-1e9, -100.5, 200.25, 1e9}) {
        std::array<float, 2> got{1, 1};
        sound.value(position, got.data());
        EXPECT_EQ(got[0], 0);
        EXPECT_EQ(got[1], 0);
    }
}

TEST(SoundInterpolator, tellsHowFarItReaches) {
    SoundInterpolator sound;
    sound.restart(0);
    EXPECT_FALSE(sound.reaches(0));
    sound.append(moments(1000, 0, 100));
    EXPECT_EQ(sound.end(), 100);
    EXPECT_TRUE(sound.reaches(100 - SoundInterpolator::kTaps / 2.0 - 0.5));
    EXPECT_FALSE(sound.reaches(100 - SoundInterpolator::kTaps / 2.0));
}

} // namespace
} // namespace tavi
