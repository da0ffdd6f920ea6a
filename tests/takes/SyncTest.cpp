#include "base/Clock.h"
#include "project/RecordingMetadataJson.h"
#include "takes/Flasher.h"
#include "takes/TakeMedia.h"
#include "takes/TakeRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <numeric>
#include <vector>

namespace tavi::test {
namespace {

/// How long a take is: TAVI_SYNC_SECONDS, else long enough for a test.
std::string takeSeconds() {
    const char* chosen = std::getenv("TAVI_SYNC_SECONDS");
    return chosen == nullptr ? "8" : chosen;
}

/// Where a film's zero stands on the host clock in seconds, by the second of that clock at which
/// something was seen or heard.
using Zeros = std::map<std::int64_t, double>;

/// The host clock at a take's start date.
double startOf(const std::filesystem::path& take) {
    const auto metadata = decodeRecordingMetadata(readFile(take / "metadata.json"));
    EXPECT_TRUE(metadata);
    return hostSeconds() - SystemClock().now().since(metadata->startDate);
}

Zeros zerosOfBeeps(const Sound& sound, double start) {
    constexpr double kLength = static_cast<double>(FakeSound::kBeep) / 1e9;
    Zeros zeros;
    for (const Burst& burst : burstsOf(sound)) {
        const double begin = burst.middle - kLength / 2;
        if (std::abs(burst.length - kLength) < kLength / 10) { // none that begins or ends the film
            const auto second = std::llround(start + begin);
            zeros[second] = static_cast<double>(second) - begin;
        }
    }
    return zeros;
}

Zeros zerosOfFlashes(const std::filesystem::path& video, double start,
                     const std::map<std::int64_t, double>& painted) {
    Zeros zeros;
    for (const double time : flashesOf(video, Flasher::kSide / 2, Flasher::kSide / 2)) {
        const auto second = std::llround(start + time);
        if (const auto found = painted.find(second); found != painted.end()) {
            zeros[second] = found->second - time;
        }
    }
    return zeros;
}

/// By how much the sound of each second is later than its picture.
struct Lateness {
    std::vector<double> seconds; ///< Of the film.
    std::vector<double> values;  ///< Milliseconds.

    double mean() const { return std::reduce(values.begin(), values.end()) / size(); }
    double spread() const {
        const auto [least, most] = std::ranges::minmax(values);
        return most - least;
    }
    /// What is left when the quarters that are least and most late are left out.
    double middleSpread() const {
        std::vector<double> sorted = values;
        std::ranges::sort(sorted);
        return sorted[sorted.size() * 3 / 4] - sorted[sorted.size() / 4];
    }
    /// Milliseconds a minute, by the line that fits best.
    double slope() const {
        const double middle = std::reduce(seconds.begin(), seconds.end()) / size();
        double above = 0;
        double below = 0;
        for (std::size_t i = 0; i < values.size(); ++i) {
            above += (seconds[i] - middle) * values[i];
            below += (seconds[i] - middle) * (seconds[i] - middle);
        }
        return below > 0 ? above / below * 60 : 0;
    }
    double size() const { return static_cast<double>(values.size()); }
};

Lateness latenessOf(const Zeros& beeps, const Zeros& flashes) {
    Lateness lateness;
    for (const auto& [second, zero] : beeps) {
        if (const auto found = flashes.find(second); found != flashes.end()) {
            lateness.seconds.push_back(static_cast<double>(second) - zero);
            lateness.values.push_back((found->second - zero) * 1e3);
        }
    }
    return lateness;
}

void print(const char* name, const Lateness& lateness) {
    std::printf("%-28s %3.0f pairs: sound %+.2f ms late on average, spread %.2f ms, "
                "drift %+.3f ms a minute\n",
                name, lateness.size(), lateness.mean(), lateness.spread(), lateness.slope());
}

/// A take of a screen that flashes and of a microphone that hears a beep, both at each second of
/// the host clock.
class Sync : public testing::Test {
protected:
    static FakeSound beeps(double clockError = 0) {
        return {.frequency = 1000, .clockError = clockError, .isBeeping = true};
    }

    void plugIn(double clockError = 0) {
        microphone = std::make_unique<FakeMicrophone>("mic", "Beeper", beeps(clockError));
        ASSERT_TRUE(rig.isListed("Beeper"));
    }

    /// What remains to be done when a recording was started.
    void finish(std::future<Outcome> recording) {
        const auto take = takeOf(recording.get());
        const auto painted = flasher.stop();
        const double start = startOf(take);
        sound = soundOf(take / "video.mov");
        beepZeros = zerosOfBeeps(sound, start);
        flashZeros = zerosOfFlashes(take / "video.mov", start, painted);
    }

    void expectInStep(const char* name) const {
        const Lateness lateness = latenessOf(beepZeros, flashZeros);
        print(name, lateness);
        ASSERT_GE(lateness.size(), 2);
        EXPECT_LT(std::abs(lateness.mean()), 20) << "milliseconds";
        // A machine that is busy with other things notices some flashes late.
        EXPECT_LT(lateness.middleSpread(), 20) << "milliseconds";
    }

    TakeRig rig;
    std::unique_ptr<FakeMicrophone> microphone;
    Flasher flasher{rig.screen()};
    Sound sound;
    Zeros beepZeros;
    Zeros flashZeros;
};

TEST_F(Sync, soundIsInStepWithThePicture) {
    ASSERT_NO_FATAL_FAILURE(plugIn());
    finish(rig.record("--mic Beeper --duration " + takeSeconds()));
    EXPECT_GE(static_cast<double>(beepZeros.size()), std::floor(sound.seconds()) - 1);
    expectInStep("microphone");
}

TEST_F(Sync, soundBesideACameraIsInStepWithThePicture) {
    ASSERT_NO_FATAL_FAILURE(plugIn());
    const FakeCamera camera("cam", "Watcher", {FakeMode{}});
    ASSERT_TRUE(rig.isListed("Watcher"));
    finish(rig.record("--mic Beeper --camera Watcher --duration " + takeSeconds()));
    EXPECT_GE(static_cast<double>(beepZeros.size()), std::floor(sound.seconds()) - 2);
    expectInStep("microphone and camera");
}

TEST_F(Sync, clockThatIsTooFastIsFollowed) {
    constexpr double kError = 0.001; // ten times what is to be expected of a device
    ASSERT_NO_FATAL_FAILURE(plugIn(kError));
    finish(rig.record("--mic Beeper --duration " + takeSeconds()));
    expectInStep("microphone, 0.1 % too fast");
    // What is left of the difference soon stops growing.
    const auto last = beepZeros.rbegin();
    const auto before = beepZeros.find(last->first - 3);
    ASSERT_NE(before, beepZeros.end());
    EXPECT_LT(std::abs(last->second - before->second), 3 * kError * 0.6) << "seconds";
}

TEST_F(Sync, soundOfAMicrophoneThatCameBackIsInStepAndTheGapIsSilent) {
    ASSERT_NO_FATAL_FAILURE(plugIn());
    auto recording = rig.record("--mic Beeper --duration 10");
    ASSERT_TRUE(rig.isWriting("video.mov"));
    sleepUntil(std::ceil(hostSeconds()) + 2.5);
    const double unplugged = hostSeconds();
    microphone.reset();
    sleepUntil(unplugged + 2);
    const double plugged = hostSeconds();
    ASSERT_NO_FATAL_FAILURE(plugIn());
    finish(std::move(recording));
    expectInStep("microphone, away meanwhile");
    ASSERT_FALSE(flashZeros.empty());
    const double zero = flashZeros.begin()->second;
    EXPECT_NEAR(sound.seconds(), 10, 0.5);
    EXPECT_LT(beepZeros.begin()->first, unplugged);
    EXPECT_GT(beepZeros.rbegin()->first, plugged);
    EXPECT_EQ(beepZeros.lower_bound(std::llround(unplugged)),
              beepZeros.lower_bound(std::llround(plugged)));
    float loudest = 0;
    for (double time = unplugged - zero; time < plugged - zero; time += 1 / sound.rate) {
        loudest = std::max(loudest,
                           std::abs(sound.samples.at(static_cast<std::size_t>(time * sound.rate))));
    }
    EXPECT_LT(loudest, 0.01F);
}

} // namespace
} // namespace tavi::test
