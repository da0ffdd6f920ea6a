#include "capture/InputMonitoringService.h"

#include "capture/CursorTrackingService.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeExecutor.h"
#include "fakes/FakeHelper.h"
#include "fakes/FakePointer.h"
#include "fakes/FakeTimers.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr double kPoll = 1.5;
constexpr const char* kReady = "{\"ready\":true}\n";

class InputMonitoringServiceTest : public testing::Test {
protected:
    InputMonitoringServiceTest() {
        QObject::connect(&service, &InputMonitoringService::isGrantedChanged,
                         [this] { changes.push_back(service.isGranted()); });
    }

    void say(std::string_view chunk) {
        launcher.say(chunk);
        main.runAll();
    }

    FakeHelperLauncher launcher;
    FakeTimers timers;
    FakeExecutor main;
    std::optional<std::string> path = "/package/TaviKeys";
    bool isAlive = true;
    std::vector<std::string> opened;
    InputMonitoringService service{{launcher, timers, main, [this] { return path; },
                                    [this](pid_t) { return isAlive; },
                                    [this](const std::string& url) { opened.push_back(url); }}};
    std::vector<bool> changes;
};

TEST_F(InputMonitoringServiceTest, probeIsStartedAndWatched) {
    EXPECT_EQ(service.helperPID(), 0);
    service.startProbe();
    EXPECT_THAT(launcher.launches, ElementsAre("/package/TaviKeys"));
    EXPECT_GE(service.helperPID(), 1);
    EXPECT_FALSE(service.isGranted());
    EXPECT_THAT(timers.running(), ElementsAre(kPoll));
}

TEST_F(InputMonitoringServiceTest, secondStartFindsALivingProbeAndDoesNothing) {
    service.startProbe();
    service.startProbe();
    EXPECT_THAT(launcher.launches, SizeIs(1));
}

TEST_F(InputMonitoringServiceTest, probeThatVanishedIsReplacedByTheNextStart) {
    service.startProbe();
    isAlive = false;
    service.startProbe();
    EXPECT_THAT(launcher.launches, SizeIs(2));
    EXPECT_TRUE(launcher.isRunning());
}

TEST_F(InputMonitoringServiceTest, readyGrantsAndEndsTheWatchWhileTheProbeStays) {
    service.startProbe();
    launcher.say(kReady);
    EXPECT_FALSE(service.isGranted()) << "only the main thread says so";
    main.runAll();
    EXPECT_THAT(changes, ElementsAre(true));
    EXPECT_THAT(timers.running(), IsEmpty());
    EXPECT_GE(service.helperPID(), 1);
}

TEST_F(InputMonitoringServiceTest, readyIsFoundAnywhereInAChunkOfSeveralLines) {
    service.startProbe();
    say("{\"t\":1,\"c\":\"a\"}\nlisten \"ready\" now\n{\"t\":1,\"c\":\"b\"}\n");
    EXPECT_TRUE(service.isGranted());
}

TEST_F(InputMonitoringServiceTest, readyAcrossTwoChunksIsNotSeen) {
    service.startProbe();
    say("{\"rea");
    say("dy\":true}\n");
    EXPECT_FALSE(service.isGranted());
}

TEST_F(InputMonitoringServiceTest, chunkThatIsNoTextIsDropped) {
    service.startProbe();
    say("\xFF\xFE\"ready\"\n");
    EXPECT_FALSE(service.isGranted());
}

TEST_F(InputMonitoringServiceTest, probeThatVanishesIsNoticedAtTheNextTick) {
    service.startProbe();
    timers.tick(kPoll);
    EXPECT_GE(service.helperPID(), 1);
    isAlive = false;
    timers.tick(kPoll);
    EXPECT_EQ(service.helperPID(), 0);
    EXPECT_FALSE(service.isGranted());
    EXPECT_THAT(timers.running(), ElementsAre(kPoll)) << "the watch goes on";
}

TEST_F(InputMonitoringServiceTest, stopEndsProbeAndWatchAndKeepsWhatWasGranted) {
    service.startProbe();
    say(kReady);
    service.stopProbe();
    EXPECT_FALSE(launcher.isRunning());
    EXPECT_EQ(service.helperPID(), 0);
    EXPECT_TRUE(service.isGranted());
    EXPECT_THAT(timers.running(), IsEmpty());
    service.startProbe();
    EXPECT_THAT(timers.running(), IsEmpty()) << "nothing is waited for any more";
}

TEST_F(InputMonitoringServiceTest, missingHelperGivesNoProbe) {
    path.reset();
    service.startProbe();
    EXPECT_THAT(launcher.launches, IsEmpty());
    EXPECT_THAT(timers.running(), IsEmpty());
    EXPECT_FALSE(service.isGranted());
}

TEST_F(InputMonitoringServiceTest, helperThatCannotBeStartedIsNotTriedAgain) {
    launcher.fails = true;
    service.startProbe();
    EXPECT_EQ(service.helperPID(), 0);
    EXPECT_THAT(timers.running(), IsEmpty());
    EXPECT_THAT(launcher.launches, SizeIs(1));
}

TEST_F(InputMonitoringServiceTest, settingsAreOpenedAndThePermissionWatched) {
    service.openInputMonitoringSettings();
    EXPECT_THAT(
        opened,
        ElementsAre("x-apple.systempreferences:com.apple.preference.security?Privacy_ListenEvent"));
    EXPECT_THAT(timers.running(), ElementsAre(kPoll));
    service.openInputMonitoringSettings();
    EXPECT_THAT(timers.running(), ElementsAre(kPoll)) << "in place of the old timer";
    service.setGranted();
    service.openInputMonitoringSettings();
    EXPECT_THAT(opened, SizeIs(3));
}

TEST_F(InputMonitoringServiceTest, waitIsToldOnceAndOnlyOfALaterGrant) {
    service.setGranted();
    int calls = 0;
    const auto wait = service.whenGranted([&] { ++calls; });
    main.runAll();
    EXPECT_EQ(calls, 0) << "what was granted before doesn't count";
    service.setGranted();
    EXPECT_EQ(calls, 0) << "later, on the main thread";
    service.setGranted();
    main.runAll();
    EXPECT_EQ(calls, 1);
}

TEST_F(InputMonitoringServiceTest, droppedWaitIsNotToldAnyMore) {
    int calls = 0;
    auto wait = service.whenGranted([&] { ++calls; });
    service.setGranted();
    wait.reset();
    main.runAll();
    EXPECT_EQ(calls, 0);
}

TEST_F(InputMonitoringServiceTest, newsOfAServiceThatIsGoneIsDropped) {
    {
        InputMonitoringService gone({launcher, timers, main, [this] { return path; },
                                     [](pid_t) { return true; }, [](const std::string&) {}});
        gone.startProbe();
        launcher.say(kReady);
    }
    EXPECT_FALSE(launcher.isRunning());
    main.runAll();
    EXPECT_FALSE(service.isGranted());
}

/// A take and the service together, with the helper of the take apart from the probe.
class ProbeAndTake : public InputMonitoringServiceTest {
protected:
    FakePointer pointer;
    FakeClock clock;
    FakeHelperLauncher takeLauncher;
    CursorTrackingService tracking{
        {0, 0, 100, 100},
        {pointer, pointer, pointer, takeLauncher, clock, main, &service, "/package/TaviKeys"}};
};

TEST_F(ProbeAndTake, takeStopsTheProbeSoThatOneCopyListens) {
    service.startProbe();
    tracking.startTracking();
    EXPECT_TRUE(launcher.isRunning()) << "both run for a moment";
    main.runAll();
    EXPECT_FALSE(launcher.isRunning());
    EXPECT_TRUE(takeLauncher.isRunning());
    tracking.stopTracking();
    EXPECT_EQ(service.helperPID(), 0) << "the probe comes back with its screen";
}

TEST_F(ProbeAndTake, readyLineOfTheTakesHelperGrants) {
    tracking.startTracking();
    main.runAll();
    takeLauncher.say(kReady);
    main.runAll();
    EXPECT_THAT(changes, ElementsAre(true));
}

TEST_F(ProbeAndTake, helperThatFailsIsStartedWhenTheProbeIsGranted) {
    takeLauncher.fails = true;
    tracking.startTracking();
    main.runAll();
    EXPECT_THAT(takeLauncher.launches, SizeIs(1));
    takeLauncher.fails = false;
    service.startProbe();
    say(kReady);
    EXPECT_THAT(takeLauncher.launches, SizeIs(2));
    EXPECT_TRUE(takeLauncher.isRunning());
}

TEST_F(ProbeAndTake, stoppedTakeDoesNotWaitForThePermission) {
    takeLauncher.fails = true;
    tracking.startTracking();
    tracking.stopTracking();
    service.setGranted();
    main.runAll();
    EXPECT_THAT(takeLauncher.launches, SizeIs(1));
}

} // namespace
} // namespace tavi
