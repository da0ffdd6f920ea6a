#include "platform/pipewire/DeviceCapture.h"

#include "platform/pipewire/FakeDevices.h"
#include "platform/pipewire/MicrophoneCapture.h"
#include "platform/pipewire/PipeWireTestServer.h"
#include "platform/pipewire/SessionRig.h"

#include <atomic>
#include <chrono>
#include <thread>

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

} // namespace
} // namespace tavi
