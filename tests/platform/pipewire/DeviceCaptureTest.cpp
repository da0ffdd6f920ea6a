#include "platform/pipewire/DeviceCapture.h"

#include "platform/pipewire/FakeDevices.h"
#include "platform/pipewire/MicrophoneCapture.h"
#include "platform/pipewire/PipeWireTestServer.h"
#include "platform/pipewire/SessionRig.h"

#include <atomic>
#include <chrono>
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

TEST(DeviceCapture, soundThatWaitsForABusyThreadIsNotLost) {
    const PipeWireTestServer server;
    const FakeMicrophone fake("mic", "Fake", {});
    MicrophoneCapture capture(microphone("mic"));
    ASSERT_TRUE(capture.open());
    std::mutex mutex;
    std::vector<CaptureSample> samples;
    capture.start([&](const CaptureSample& sample) {
        const std::lock_guard lock(mutex);
        samples.push_back(sample);
        if (samples.size() == 30) {
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
        }
    });
    ASSERT_TRUE(test::waitFor([&] {
        const std::lock_guard lock(mutex);
        return samples.size() > 70;
    }));
    capture.stop();
    for (std::size_t i = 20; i < samples.size(); ++i) {
        const double length = static_cast<double>(samples[i - 1].sound->frames()) / 48000;
        const double step =
            (samples[i].presentationTime - samples[i - 1].presentationTime).seconds();
        EXPECT_NEAR(step, length, 0.001);
    }
}

} // namespace
} // namespace tavi
