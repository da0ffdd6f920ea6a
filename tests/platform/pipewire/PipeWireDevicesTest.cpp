#include "platform/pipewire/PipeWireDevices.h"

#include "fakes/FakeExecutor.h"
#include "platform/pipewire/FakeDevices.h"
#include "platform/pipewire/PipeWireTestServer.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace tavi {
namespace {

using test::FakeCamera;
using test::FakeMicrophone;
using test::PipeWireTestServer;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> names(PipeWireDevices& devices, CaptureDeviceKind kind) {
    std::vector<std::string> found;
    for (const auto& device : devices.devices(kind).value_or(std::vector<CaptureDevice>{})) {
        EXPECT_EQ(device.kind, kind);
        found.push_back(device.id + "=" + device.name);
    }
    return found;
}

constexpr auto kMicrophone = CaptureDeviceKind::microphone;
constexpr auto kCamera = CaptureDeviceKind::camera;

TEST(PipeWireDevices, areListedByNameWithTheDefaultFirst) {
    const PipeWireTestServer server;
    const FakeMicrophone b("b", "Voice", {});
    const FakeMicrophone a("a", "Desk", {});
    const FakeMicrophone c("c", "Zoo", {});
    const FakeCamera camera("k", "Eye", {{}});
    ASSERT_TRUE(PipeWireTestServer::chooseDefaultSource("c"));
    FakeExecutor main;
    PipeWireDevices devices(main);
    EXPECT_TRUE(test::waitFor([&] {
        return names(devices, kMicrophone) ==
               std::vector<std::string>{"c=Zoo", "a=Desk", "b=Voice"};
    })) << testing::PrintToString(names(devices, kMicrophone));
    EXPECT_THAT(names(devices, kCamera), ElementsAre("k=Eye"));
    ASSERT_TRUE(PipeWireTestServer::chooseDefaultSource("b"));
    EXPECT_TRUE(test::waitFor([&] {
        return names(devices, kMicrophone) ==
               std::vector<std::string>{"b=Voice", "a=Desk", "c=Zoo"};
    })) << testing::PrintToString(names(devices, kMicrophone));
}

TEST(PipeWireDevices, changesAreTold) {
    PipeWireTestServer server;
    FakeExecutor main;
    PipeWireDevices devices(main);
    int calls = 0;
    devices.setChangeHandler([&calls] { ++calls; });
    const auto isTold = [&](const std::vector<std::string>& microphones) {
        return test::waitFor([&] {
            const int before = calls;
            main.runAll();
            return calls > before && names(devices, kMicrophone) == microphones;
        });
    };
    auto a = std::make_unique<FakeMicrophone>("a", "A", test::FakeSound{});
    EXPECT_TRUE(isTold({"a=A"}));
    auto b = std::make_unique<FakeMicrophone>("b", "B", test::FakeSound{});
    EXPECT_TRUE(isTold({"a=A", "b=B"}));
    ASSERT_TRUE(PipeWireTestServer::chooseDefaultSource("b"));
    EXPECT_TRUE(isTold({"b=B", "a=A"}));
    b.reset();
    EXPECT_TRUE(isTold({"a=A"}));
    server.die();
    EXPECT_TRUE(isTold({}));
    EXPECT_EQ(devices.devices(kMicrophone).error().kind, CaptureDeviceError::Kind::noService);
    a.reset();
    server.start();
    a = std::make_unique<FakeMicrophone>("a", "A", test::FakeSound{});
    EXPECT_TRUE(isTold({"a=A"}));
    devices.setChangeHandler({});
    calls = 0;
    a.reset();
    EXPECT_TRUE(test::waitFor([&] { return names(devices, kMicrophone).empty(); }));
    main.runAll();
    EXPECT_EQ(calls, 0);
}

TEST(PipeWireDevices, monitorOfALoudspeakerIsNoMicrophone) {
    const PipeWireTestServer server;
    ASSERT_EQ(std::system("pw-cli create-node adapter '{ factory.name=support.null-audio-sink "
                          "node.name=spk media.class=Audio/Sink object.linger=true }' >/dev/null"),
              0);
    const FakeMicrophone a("a", "A", {});
    FakeExecutor main;
    PipeWireDevices devices(main);
    EXPECT_THAT(names(devices, kMicrophone), ElementsAre("a=A"));
}

TEST(PipeWireDevices, withoutADaemonThereIsNoAccessAndAnError) {
    const test::NoPipeWire nothing;
    FakeExecutor main;
    PipeWireDevices devices(main);
    const auto found = devices.devices(kMicrophone);
    ASSERT_FALSE(found);
    EXPECT_EQ(found.error().kind, CaptureDeviceError::Kind::noService);
    std::vector<bool> answers;
    devices.requestAccess(kCamera, [&answers](bool isGranted) { answers.push_back(isGranted); });
    EXPECT_THAT(answers, IsEmpty()) << "the answer comes later";
    main.runAll();
    EXPECT_THAT(answers, ElementsAre(false));
}

TEST(PipeWireDevices, accessIsThereWithTheDaemon) {
    const PipeWireTestServer server;
    FakeExecutor main;
    PipeWireDevices devices(main);
    std::vector<bool> answers;
    devices.requestAccess(kMicrophone,
                          [&answers](bool isGranted) { answers.push_back(isGranted); });
    main.runAll();
    EXPECT_THAT(answers, ElementsAre(true));
    EXPECT_THAT(names(devices, kMicrophone), IsEmpty());
}

} // namespace
} // namespace tavi
