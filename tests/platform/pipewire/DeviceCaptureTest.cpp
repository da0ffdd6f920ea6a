#include "platform/pipewire/DeviceCapture.h"

#include "platform/pipewire/FakeDevices.h"
#include "platform/pipewire/MicrophoneCapture.h"
#include "platform/pipewire/PipeWireTestServer.h"
#include "platform/pipewire/SessionRig.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <mutex>
#include <thread>
#include <vector>

namespace tavi {
namespace {

using test::FakeMicrophone;
using test::microphone;
using test::PipeWireTestServer;

TEST(DeviceCapture, stopsWhileSoundWaitsForAThreadThatCannotKeepUp) {
    const PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", {});
    for (int round = 0; round < 5; ++round) {
        MicrophoneCapture capture(microphone("mic"));
        ASSERT_TRUE(capture.open());
        std::atomic<int> count = 0;
        capture.start([&count](const CaptureSample&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(70));
            ++count;
        });
        ASSERT_TRUE(test::waitFor([&count] { return count > 2; }));
        capture.stop();
        const int atStop = count;
        std::this_thread::sleep_for(std::chrono::milliseconds(70));
        EXPECT_EQ(count, atStop);
    }
}

/// Whether sound that is taken by a thread that pauses meanwhile comes without a gap.
bool isWhole(MicrophoneCapture& capture) {
    std::mutex mutex;
    std::vector<CaptureSample> samples;
    capture.start([&](const CaptureSample& sample) {
        const std::lock_guard lock(mutex);
        samples.push_back(sample);
        if (samples.size() == 30) {
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
        }
    });
    EXPECT_TRUE(test::waitFor([&] {
        const std::lock_guard lock(mutex);
        return samples.size() > 70;
    }));
    capture.stop();
    bool isWhole = samples.size() > 70;
    for (std::size_t i = 20; i < samples.size(); ++i) {
        const double length = static_cast<double>(samples[i - 1].sound->frames()) / 48000;
        const double step =
            (samples[i].presentationTime - samples[i - 1].presentationTime).seconds();
        isWhole = isWhole && std::abs(step - length) < 0.001;
    }
    return isWhole;
}

TEST(DeviceCapture, soundThatWaitsForABusyThreadIsNotLost) {
    const PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", {});
    // On a busy machine a PipeWire without real-time rights loses sound by itself, now and then;
    // the queue would lose it each time.
    bool isWholeOnce = false;
    for (int turn = 0; turn < 4 && !isWholeOnce; ++turn) {
        MicrophoneCapture capture(microphone("mic"));
        ASSERT_TRUE(capture.open());
        isWholeOnce = isWhole(capture);
    }
    EXPECT_TRUE(isWholeOnce);
}

} // namespace
} // namespace tavi
