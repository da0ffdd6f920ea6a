#include "media/SoundFeed.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <memory>
#include <numbers>
#include <random>
#include <thread>
#include <vector>

namespace tavi {
namespace {

constexpr std::int64_t kStart = 77'000'000'000; ///< Host nanoseconds at which runs begin.
constexpr double kPitch = 500;                  // Hz

double sineAt(double seconds) {
    return 0.5 * std::sin(2 * std::numbers::pi * kPitch * seconds);
}

/// A device that asks for portions at its own pace, and what it heard.
class Device {
public:
    /// `clockError`: by which share its clock is too fast. `tremble`: of the times it reports, in
    /// seconds.
    Device(SoundFeed& feed, double clockError, double tremble)
        : m_feed(feed),
          m_interval(1 / (kPlayedRate * (1 + clockError))),
          m_tremble(-tremble, tremble) {}

    /// Asks for a portion that is heard from where the last one ended, or from `at` on.
    void ask(std::size_t frames = 1024) {
        std::vector<float> portion(frames * kPlayedChannels, 1);
        m_feed.fill(portion, std::llround((m_time + m_tremble(m_random)) * 1e9));
        for (std::size_t n = 0; n < frames; ++n) {
            times.push_back(m_time + static_cast<double>(n) * m_interval);
            left.push_back(portion[n * kPlayedChannels]);
            right.push_back(portion[n * kPlayedChannels + 1]);
        }
        m_time += static_cast<double>(frames) * m_interval;
    }

    void goTo(double hostSeconds) { m_time = hostSeconds; }
    double time() const { return m_time; }

    std::vector<double> times; ///< Host seconds at which each moment was heard.
    std::vector<float> left;
    std::vector<float> right;

private:
    SoundFeed& m_feed;
    double m_interval;
    double m_time = kStart / 1e9 - 0.2;
    std::mt19937 m_random{7};
    std::uniform_real_distribution<double> m_tremble;
};

/// Writes a sine as far ahead as there is room; the right channel is the negative.
class SineWriter {
public:
    explicit SineWriter(SoundFeed& feed) : m_feed(feed) {}

    void write(std::size_t most = SoundFeed::kCapacity) {
        std::vector<float> samples;
        const std::size_t frames = std::min(m_feed.room(), most);
        for (std::size_t n = 0; n < frames; ++n) {
            const double value = sineAt(static_cast<double>(m_next + n) / kPlayedRate);
            samples.push_back(static_cast<float>(value));
            samples.push_back(static_cast<float>(-value));
        }
        m_next += m_feed.write(samples);
    }

private:
    SoundFeed& m_feed;
    std::size_t m_next = 0;
};

class SoundFeedTest : public testing::Test {
protected:
    std::unique_ptr<SoundFeed> feed = std::make_unique<SoundFeed>();
};

TEST_F(SoundFeedTest, isSilentWithoutARun) {
    Device device(*feed, 0, 0);
    device.ask();
    for (const float value : device.left) {
        EXPECT_EQ(value, 0);
    }
}

TEST_F(SoundFeedTest, beginsAtItsTick) {
    feed->begin(kStart);
    std::vector<float> ones(4800 * kPlayedChannels, 0.5F);
    EXPECT_EQ(feed->write(ones), 4800u);
    Device device(*feed, 0, 0);
    while (device.time() < kStart / 1e9 + 0.05) {
        device.ask(480);
    }
    // Half way up is where it begins: the edge of a band-limited step.
    const auto first = std::find_if(device.left.begin(), device.left.end(),
                                    [](float value) { return value > 0.25F; });
    ASSERT_NE(first, device.left.end());
    const double begin = device.times[static_cast<std::size_t>(first - device.left.begin())];
    EXPECT_NEAR(begin, kStart / 1e9, 1.5 / kPlayedRate);
}

struct DriftCase {
    double clockError;
    double tremble;
    double limit; ///< How far from its place the sound may be, in seconds.
};

class SoundFeedDrift : public testing::TestWithParam<DriftCase> {};

TEST_P(SoundFeedDrift, staysInPlaceWithoutASeam) {
    const auto [clockError, tremble, limit] = GetParam();
    const auto feed = std::make_unique<SoundFeed>();
    feed->begin(kStart);
    SineWriter writer(*feed);
    Device device(*feed, clockError, tremble);
    while (device.time() < kStart / 1e9 + 20) {
        writer.write();
        device.ask();
    }
    // A sine's place is seen where it crosses zero upwards; steeper than the sine nothing may be.
    const double steepest = 0.5 * 2 * std::numbers::pi * kPitch / kPlayedRate * 1.1;
    int crossings = 0;
    for (std::size_t n = 1; n < device.times.size(); ++n) {
        const double since = device.times[n] - kStart / 1e9;
        if (since < 0.05) {
            continue;
        }
        ASSERT_LT(std::abs(device.left[n] - device.left[n - 1]), steepest) << since;
        ASSERT_NEAR(device.right[n], -device.left[n], 1e-6);
        if (device.left[n - 1] < 0 && device.left[n] >= 0) {
            ++crossings;
            const double periods = since * kPitch;
            ASSERT_NEAR(periods, std::round(periods), limit * kPitch) << since;
        }
    }
    EXPECT_NEAR(crossings, 20 * kPitch, 0.05 * kPitch);
}

INSTANTIATE_TEST_SUITE_P(Clocks, SoundFeedDrift,
                         testing::Values(DriftCase{0, 0, 0.000022},     //
                                         DriftCase{0.0002, 0, 0.0005},  //
                                         DriftCase{-0.0002, 0, 0.0005}, //
                                         DriftCase{0, 0.001, 0.0008},   //
                                         DriftCase{0.0001, 0.0005, 0.0007}));

TEST_F(SoundFeedTest, goesOnInTheRightPlaceAfterLostSound) {
    feed->begin(kStart);
    SineWriter writer(*feed);
    Device device(*feed, 0, 0);
    while (device.time() < kStart / 1e9 + 0.3) {
        writer.write();
        device.ask();
    }
    device.goTo(device.time() + 0.1);
    const std::size_t again = device.times.size();
    for (int i = 0; i < 4; ++i) {
        writer.write();
        device.ask();
    }
    for (std::size_t n = again + 200; n < device.times.size(); ++n) {
        EXPECT_NEAR(device.left[n], sineAt(device.times[n] - kStart / 1e9), 0.005);
    }
}

TEST_F(SoundFeedTest, whatIsWrittenTooLateIsSkipped) {
    feed->begin(kStart);
    SineWriter writer(*feed);
    Device device(*feed, 0, 0);
    writer.write(2560);
    while (device.time() < kStart / 1e9 + 0.2) {
        device.ask();
    }
    const std::size_t silent = device.left.size() - 2048;
    EXPECT_EQ(device.left[silent + 1024], 0) << "nothing was written";
    const std::size_t again = device.times.size();
    for (int i = 0; i < 20; ++i) {
        writer.write();
        device.ask();
    }
    for (std::size_t n = again + 200; n < device.times.size(); ++n) {
        ASSERT_NEAR(device.left[n], sineAt(device.times[n] - kStart / 1e9), 0.005) << n;
    }
}

TEST_F(SoundFeedTest, aNewRunReplacesTheOld) {
    feed->begin(kStart);
    SineWriter(*feed).write();
    EXPECT_EQ(feed->room(), 0u);
    Device device(*feed, 0, 0);
    device.goTo(kStart / 1e9);
    device.ask();
    feed->begin(kStart + 100'000'000);
    device.ask();
    EXPECT_GT(feed->room(), SoundFeed::kCapacity / 2) << "what is left is thrown away";
    std::vector<float> ones(9600 * kPlayedChannels, 0.5F);
    feed->write(ones);
    while (device.time() < kStart / 1e9 + 0.2) {
        device.ask();
    }
    for (std::size_t n = 0; n < device.times.size(); ++n) {
        const double since = device.times[n] - kStart / 1e9;
        if (since > 0.03 && since < 0.099) {
            ASSERT_NEAR(device.left[n], 0, 1e-5) << since;
        } else if (since > 0.102) {
            ASSERT_NEAR(device.left[n], 0.5, 0.001) << since;
        }
    }
}

TEST_F(SoundFeedTest, fadesInPlaceOfClicking) {
    feed->begin(kStart);
    std::vector<float> ones(48000 * kPlayedChannels, 0.5F);
    feed->write(ones);
    Device device(*feed, 0, 0);
    device.goTo(kStart / 1e9 + 0.1);
    device.ask();
    feed->end();
    device.ask();
    EXPECT_NEAR(device.left[1023], 0.5, 0.001);
    EXPECT_EQ(device.left.back(), 0);
    for (std::size_t n = 1; n < device.left.size(); ++n) {
        ASSERT_LT(std::abs(device.left[n] - device.left[n - 1]), 0.011) << n;
    }
}

/// For the thread sanitizer, and that nothing is lost between the threads.
TEST_F(SoundFeedTest, isWrittenAndAskedAtOnce) {
    std::atomic<bool> isDone = false;
    std::thread writer([&] {
        for (int run = 0; run < 50; ++run) {
            feed->begin(kStart + run * 10'000'000);
            SineWriter sine(*feed);
            for (int i = 0; i < 20; ++i) {
                sine.write(1000);
                std::this_thread::yield();
            }
            feed->end();
        }
        isDone = true;
    });
    Device device(*feed, 0, 0);
    device.goTo(kStart / 1e9);
    while (!isDone) {
        device.ask(256);
        device.goTo(std::min(device.time(), kStart / 1e9 + 1));
    }
    writer.join();
    for (const float value : device.left) {
        ASSERT_LE(std::abs(value), 0.51F);
    }
}

} // namespace
} // namespace tavi
