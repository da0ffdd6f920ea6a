#include "capture/CursorTrackingService.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeExecutor.h"
#include "fakes/FakeHelper.h"
#include "fakes/FakePointer.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::SizeIs;
using Kind = PointerEventKind;

SystemCursor cursorOf(std::uint8_t seed) {
    return {{seed, 1, 2, 3}, {seed + 0.0, 2}, {16, 24}};
}

/// A frame of 800 x 600 points whose bottom left corner is at (100, 50).
class CursorTrackingServiceTest : public testing::Test {
protected:
    static constexpr Rect kFrame{100, 50, 800, 600};

    CursorTrackingServiceTest() {
        pointer.arrow = cursorOf(0);
        pointer.current = cursorOf(0);
        pointer.location = {500, 350};
    }

    CursorTrackingPorts ports() {
        return {pointer, pointer, pointer, launcher, clock, main, &permission, "/package/TaviKeys"};
    }

    /// Tracking, with the first video frame a moment ago.
    void startStamped() {
        service.startTracking();
        service.setStartDate(clock.now());
    }

    void sayKey(std::string_view line) {
        launcher.say(line);
        main.runAll();
    }

    std::vector<CursorEventType> types() const {
        std::vector<CursorEventType> all;
        for (const auto& event : service.events()) {
            all.push_back(event.eventType);
        }
        return all;
    }

    FakePointer pointer;
    FakeHelperLauncher launcher;
    FakeKeyPermission permission;
    FakeClock clock;
    FakeExecutor main;
    CursorTrackingService service{kFrame, ports()};
};

TEST_F(CursorTrackingServiceTest, installsSixMonitorsInOrder) {
    service.startTracking();
    EXPECT_THAT(pointer.installed,
                ElementsAre(Kind::mouseMoved, Kind::leftMouseDragged, Kind::leftMouseDown,
                            Kind::leftMouseUp, Kind::rightMouseDown, Kind::scrollWheel));
}

TEST_F(CursorTrackingServiceTest, monitorThatYieldsNothingIsSkipped) {
    pointer.refused = {Kind::leftMouseUp};
    startStamped();
    EXPECT_THAT(pointer.monitors, SizeIs(5));
    pointer.fire(Kind::scrollWheel);
    EXPECT_THAT(service.events(), SizeIs(1));
    service.stopTracking();
    EXPECT_THAT(pointer.monitors, SizeIs(0));
}

TEST_F(CursorTrackingServiceTest, eachKindHasItsTypeAndItsPlace) {
    startStamped();
    clock.advance(0.5);
    for (const Kind kind : {Kind::mouseMoved, Kind::leftMouseDown, Kind::leftMouseUp,
                            Kind::rightMouseDown, Kind::scrollWheel}) {
        pointer.fire(kind);
    }
    EXPECT_THAT(types(), ElementsAre(CursorEventType::move, CursorEventType::leftMouseDown,
                                     CursorEventType::leftMouseUp, CursorEventType::rightClick,
                                     CursorEventType::scroll));
    const CursorEvent& first = service.events().front();
    EXPECT_DOUBLE_EQ(first.timestamp, 0.5);
    EXPECT_DOUBLE_EQ(first.x, 400);
    EXPECT_DOUBLE_EQ(first.y, 300);
    EXPECT_EQ(first.keyCharacter, std::nullopt);
    EXPECT_EQ(first.keyModifiers, std::nullopt);
}

struct BoundsCase {
    Point pointer;
    bool isLogged;
    Point logged;
};

class CursorTrackingBounds : public CursorTrackingServiceTest,
                             public testing::WithParamInterface<BoundsCase> {};

TEST_P(CursorTrackingBounds, areInclusive) {
    const auto [place, isLogged, logged] = GetParam();
    startStamped();
    pointer.location = place;
    pointer.fire(Kind::leftMouseDown);
    ASSERT_THAT(service.events(), SizeIs(isLogged ? 1 : 0));
    if (isLogged) {
        EXPECT_EQ((Point{service.events()[0].x, service.events()[0].y}), logged);
    }
}

INSTANTIATE_TEST_SUITE_P(Edges, CursorTrackingBounds,
                         testing::Values(BoundsCase{{900, 300}, true, {800, 350}}, // right edge
                                         BoundsCase{{901, 300}, false, {}},        // beyond it
                                         BoundsCase{{100, 300}, true, {0, 350}},   // left edge
                                         BoundsCase{{99, 300}, false, {}},         //
                                         BoundsCase{{500, 50}, true, {400, 600}},  // bottom edge
                                         BoundsCase{{500, 49}, false, {}},         //
                                         BoundsCase{{500, 650}, true, {400, 0}},   // top edge
                                         BoundsCase{{500, 651}, false, {}}));

TEST_F(CursorTrackingServiceTest, droppedEventLooksUpNoCursor) {
    startStamped();
    pointer.location = {0, 0};
    pointer.fire(Kind::leftMouseDown);
    EXPECT_EQ(pointer.cursorLookups, 0);
}

TEST_F(CursorTrackingServiceTest, secondMoveWithinTheGateIsNotLogged) {
    startStamped();
    pointer.fire(Kind::mouseMoved);
    clock.advance(0.015);
    pointer.fire(Kind::mouseMoved);
    EXPECT_THAT(service.events(), SizeIs(1));
    clock.advance(0.002);
    pointer.fire(Kind::mouseMoved);
    EXPECT_THAT(service.events(), SizeIs(2));
}

TEST_F(CursorTrackingServiceTest, moveExactlyAtTheGateIsLogged) {
    clock.setNow(0);
    startStamped();
    pointer.fire(Kind::mouseMoved);
    clock.setNow(0.016);
    pointer.fire(Kind::mouseMoved);
    EXPECT_THAT(service.events(), SizeIs(2));
}

TEST_F(CursorTrackingServiceTest, moveAndDragShareTheGate) {
    startStamped();
    pointer.fire(Kind::mouseMoved);
    clock.advance(0.010);
    pointer.fire(Kind::leftMouseDragged);
    EXPECT_THAT(service.events(), SizeIs(1));
    clock.advance(0.010);
    pointer.fire(Kind::leftMouseDragged);
    EXPECT_THAT(types(), ElementsAre(CursorEventType::move, CursorEventType::move));
}

TEST_F(CursorTrackingServiceTest, gateMovesOnWithADroppedMove) {
    startStamped();
    pointer.location = {0, 0}; // outside the frame
    pointer.fire(Kind::mouseMoved);
    pointer.location = {500, 350};
    clock.advance(0.010);
    pointer.fire(Kind::mouseMoved);
    EXPECT_THAT(service.events(), SizeIs(0));
}

TEST_F(CursorTrackingServiceTest, aFrameThatMovesIsFollowed) {
    startStamped();
    pointer.fire(Kind::leftMouseDown);
    service.moveCaptureFrame({400, -200, 640, 480});
    pointer.fire(Kind::leftMouseUp); // above it now
    pointer.location = {500, 250};
    pointer.fire(Kind::scrollWheel);
    ASSERT_THAT(service.events(), SizeIs(2));
    EXPECT_EQ(service.events()[0].x, 400);
    EXPECT_EQ(service.events()[0].y, 300);
    EXPECT_EQ(service.events()[1].x, 100);
    EXPECT_EQ(service.events()[1].y, 30);
}

TEST_F(CursorTrackingServiceTest, clicksAndScrollsHaveNoGate) {
    startStamped();
    for (int i = 0; i < 3; ++i) {
        pointer.fire(Kind::scrollWheel);
    }
    EXPECT_THAT(service.events(), SizeIs(3));
}

TEST_F(CursorTrackingServiceTest, clickAndKeyBeforeTheFirstFrameAreDropped) {
    service.startTracking();
    pointer.fire(Kind::leftMouseDown);
    sayKey(R"({"t":1,"c":"a"})");
    service.setStartDate(clock.now());
    EXPECT_THAT(service.events(), SizeIs(0));
    pointer.fire(Kind::leftMouseDown);
    sayKey(R"({"t":1,"c":"a"})");
    EXPECT_THAT(service.events(), SizeIs(2));
}

TEST_F(CursorTrackingServiceTest, keyBeforeTheStartDateIsDropped) {
    startStamped();
    clock.advance(-1);
    sayKey(R"({"t":1,"c":"a"})");
    EXPECT_THAT(service.events(), SizeIs(0));
}

TEST_F(CursorTrackingServiceTest, arrowIsImageZero) {
    pointer.current = cursorOf(9);
    startStamped();
    EXPECT_THAT(service.cursorImageInfos(), ElementsAre(CursorImageInfo{0, 2, 16, 24}));
    pointer.current.reset();
    pointer.fire(Kind::leftMouseDown);
    EXPECT_EQ(service.events().back().cursorImageId, 0);
}

TEST_F(CursorTrackingServiceTest, shapeSeenAgainKeepsItsIdAndAddsNoRow) {
    startStamped();
    for (const std::uint8_t shape : {0, 5, 0, 6, 5, 5}) {
        pointer.current = cursorOf(shape);
        pointer.fire(Kind::scrollWheel);
    }
    std::vector<std::int64_t> ids;
    for (const auto& event : service.events()) {
        ids.push_back(event.cursorImageId);
    }
    EXPECT_THAT(ids, ElementsAre(0, 1, 0, 2, 1, 1));
    EXPECT_THAT(service.cursorImageInfos(),
                ElementsAre(CursorImageInfo{0, 2, 16, 24}, CursorImageInfo{5, 2, 16, 24},
                            CursorImageInfo{6, 2, 16, 24}));
    EXPECT_THAT(
        service.cursorImageDatas(),
        ElementsAre(cursorOf(0).imageBytes, cursorOf(5).imageBytes, cursorOf(6).imageBytes));
}

TEST_F(CursorTrackingServiceTest, cursorWithoutPixelsKeepsTheLastId) {
    startStamped();
    pointer.current = cursorOf(5);
    pointer.fire(Kind::scrollWheel);
    pointer.current = SystemCursor{};
    pointer.fire(Kind::scrollWheel);
    EXPECT_EQ(service.events().back().cursorImageId, 1);
}

TEST_F(CursorTrackingServiceTest, withoutArrowEarlyEventsCarryAnIdWithoutRow) {
    pointer.arrow.reset();
    pointer.current.reset();
    startStamped();
    pointer.fire(Kind::leftMouseDown);
    EXPECT_EQ(service.events().back().cursorImageId, 0);
    EXPECT_TRUE(service.cursorImageInfos().empty());
}

TEST_F(CursorTrackingServiceTest, keyLineBecomesAKeyDown) {
    startStamped();
    clock.advance(1.25);
    sayKey("{\"t\":123,\"c\":\"Return\",\"m\":1179648}\n");
    ASSERT_THAT(service.events(), SizeIs(1));
    EXPECT_EQ(service.events()[0],
              (CursorEvent{1.25, 400, 300, CursorEventType::keyDown, 0, "Return", 1179648}));
}

TEST_F(CursorTrackingServiceTest, keyIsAppendedOnTheMainThreadOnly) {
    startStamped();
    launcher.say(R"({"t":1,"c":"a"})");
    EXPECT_THAT(service.events(), SizeIs(0));
    main.runAll();
    EXPECT_THAT(service.events(), SizeIs(1));
}

TEST_F(CursorTrackingServiceTest, keyTypedWhileThePointerIsHiddenIsWhereThePointerWas) {
    startStamped();
    pointer.place = pointer.location;
    pointer.location = {-1, 0}; // nobody knows where it is now
    sayKey("{\"t\":1,\"c\":\"a\"}\n");
    ASSERT_THAT(service.events(), SizeIs(1));
    EXPECT_EQ(service.events()[0].x, 400);
    EXPECT_EQ(service.events()[0].y, 300);
    pointer.fire(Kind::mouseMoved);
    EXPECT_THAT(service.events(), SizeIs(1)) << "a move is where the pointer is";
}

TEST_F(CursorTrackingServiceTest, keyOutsideTheFrameIsLogged) {
    startStamped();
    pointer.location = {0, 1000};
    sayKey(R"({"t":1,"c":"a"})");
    ASSERT_THAT(service.events(), SizeIs(1));
    EXPECT_DOUBLE_EQ(service.events()[0].x, -100);
    EXPECT_DOUBLE_EQ(service.events()[0].y, -350);
}

struct KeyLineCase {
    std::string_view chunk;
    std::size_t events;
    std::optional<std::uint64_t> modifiers;
};

class KeyLines : public CursorTrackingServiceTest,
                 public testing::WithParamInterface<KeyLineCase> {};

TEST_P(KeyLines, areReadOrDropped) {
    const auto [chunk, count, modifiers] = GetParam();
    startStamped();
    sayKey(chunk);
    ASSERT_THAT(service.events(), SizeIs(count));
    if (count > 0) {
        EXPECT_EQ(service.events()[0].keyModifiers, modifiers);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Wire, KeyLines,
    testing::Values(KeyLineCase{R"({"t":1,"c":"a"})", 1, std::nullopt},            // no "m"
                    KeyLineCase{R"({"t":1,"c":"a","m":"5"})", 1, std::nullopt},    // "m" a string
                    KeyLineCase{R"({"t":1,"c":"a","m":-5})", 1, std::nullopt},     // negative
                    KeyLineCase{R"({"t":1,"c":"a","m":5})", 1, 5U},                //
                    KeyLineCase{R"({"t":null,"c":"a","x":[1]})", 1, std::nullopt}, // any "t"
                    KeyLineCase{R"({"c":"a","m":5})", 0, {}},                      // no "t"
                    KeyLineCase{R"({"t":1,"c":7})", 0, {}},                        // "c" a number
                    KeyLineCase{R"({"t":1})", 0, {}},                              // no "c"
                    KeyLineCase{R"(["t","c"])", 0, {}},                            // no object
                    KeyLineCase{"nonsense", 0, {}},                                //
                    KeyLineCase{"{\"t\":1,\"c\":\"\xFF\"}", 0, {}},                // not UTF-8
                    KeyLineCase{"\n\n", 0, {}},                                    //
                    KeyLineCase{R"({"t":1,"c":"\"ready\""})", 1, std::nullopt},    // escaped
                    KeyLineCase{"{\"t\":1,\"c\":\"a\"}\n{\"t\":1,\"c\":\"b\"}\n"
                                "{\"t\":1,\"c\":\"c\"}\n",
                                3, std::nullopt}));

TEST_F(CursorTrackingServiceTest, pointerLineTakesTheMomentOfTheDeviceAndTheLastPlace) {
    startStamped();
    clock.advance(2);
    pointer.current = cursorOf(5);
    // The clock stands at 52 s; the button went down 0.25 s ago.
    launcher.say("{\"t\":51750000,\"p\":\"leftMouseDown\"}\n");
    pointer.location = {101, 650}; // moved on before the main thread comes to it
    EXPECT_THAT(service.events(), SizeIs(0));
    main.runAll();
    ASSERT_THAT(service.events(), SizeIs(1));
    const CursorEvent& click = service.events()[0];
    EXPECT_NEAR(click.timestamp, 1.75, 1e-6);
    EXPECT_EQ(click.eventType, CursorEventType::leftMouseDown);
    EXPECT_EQ((Point{click.x, click.y}), (Point{400, 300}));
    EXPECT_EQ(click.cursorImageId, 1);
}

TEST_F(CursorTrackingServiceTest, everyPointerLineIsAnEvent) {
    startStamped();
    sayKey("{\"t\":50000000,\"p\":\"leftMouseDown\"}\n{\"t\":50000000,\"p\":\"leftMouseUp\"}\n"
           "{\"t\":50000000,\"p\":\"rightClick\"}\n{\"t\":50000000,\"p\":\"scroll\"}\n"
           "{\"t\":50000000,\"p\":\"scroll\"}\n");
    EXPECT_THAT(types(), ElementsAre(CursorEventType::leftMouseDown, CursorEventType::leftMouseUp,
                                     CursorEventType::rightClick, CursorEventType::scroll,
                                     CursorEventType::scroll));
}

TEST_F(CursorTrackingServiceTest, pointerLineOutsideTheFrameOrBeforeTheFirstFrameIsDropped) {
    service.startTracking();
    sayKey(R"({"t":50000000,"p":"scroll"})");
    service.setStartDate(clock.now());
    sayKey(R"({"t":49900000,"p":"scroll"})"); // before the first frame, told after it
    pointer.location = {99, 300};
    sayKey(R"({"t":50000000,"p":"scroll"})");
    EXPECT_THAT(service.events(), SizeIs(0));
}

TEST_F(CursorTrackingServiceTest, pointerLineOfAnotherClockCountsAsJustNow) {
    startStamped();
    clock.advance(3);
    sayKey(R"({"t":99000000,"p":"scroll"})"); // of the future
    sayKey(R"({"t":1,"p":"scroll"})");
    ASSERT_THAT(service.events(), SizeIs(2));
    EXPECT_DOUBLE_EQ(service.events()[0].timestamp, 3);
    EXPECT_DOUBLE_EQ(service.events()[1].timestamp, 2); // as late as a line can be
}

TEST_F(CursorTrackingServiceTest, everyLineOfAChunkIsAKey) {
    startStamped();
    sayKey("{\"t\":1,\"c\":\"a\"}\n\n{\"t\":1,\"c\":\"b\"}\n{\"t\":1,\"c\":\"c\"}\n");
    ASSERT_THAT(service.events(), SizeIs(3));
    EXPECT_EQ(service.events()[0].keyCharacter, "a");
    EXPECT_EQ(service.events()[1].keyCharacter, "b");
    EXPECT_EQ(service.events()[2].keyCharacter, "c");
}

TEST_F(CursorTrackingServiceTest, readyAcrossTwoChunksIsNotSeen) {
    startStamped();
    launcher.say("{\"rea");
    launcher.say("dy\":true}\n");
    main.runAll();
    EXPECT_EQ(permission.grants, 0);
    EXPECT_THAT(service.events(), SizeIs(0));
}

TEST_F(CursorTrackingServiceTest, lineAcrossTwoChunksIsLost) {
    startStamped();
    sayKey("{\"t\":1,\"c\":\"a\"}\n{\"t\":1,");
    sayKey("\"c\":\"b\"}\n{\"t\":1,\"c\":\"c\"}\n");
    ASSERT_THAT(service.events(), SizeIs(2));
    EXPECT_EQ(service.events()[1].keyCharacter, "c");
}

TEST_F(CursorTrackingServiceTest, readyLineGrantsAndIsNoKey) {
    startStamped();
    launcher.say("{\"ready\":true}\n{\"t\":1,\"c\":\"a\"}\n");
    EXPECT_EQ(permission.grants, 0);
    main.runAll();
    EXPECT_EQ(permission.grants, 1);
    EXPECT_THAT(types(), ElementsAre(CursorEventType::keyDown));
}

TEST_F(CursorTrackingServiceTest, helperIsLaunchedAndTheProbeStopped) {
    service.startTracking();
    EXPECT_THAT(launcher.launches, ElementsAre("/package/TaviKeys"));
    EXPECT_TRUE(launcher.lastArguments.empty());
    main.runAll();
    EXPECT_EQ(permission.probeStops, 1);
    service.stopTracking();
    EXPECT_FALSE(launcher.isRunning());
}

TEST_F(CursorTrackingServiceTest, helperIsToldWhatToWatch) {
    auto wayland = ports();
    wayland.helperArguments = {kHelperPointerOption};
    CursorTrackingService clicks(kFrame, wayland);
    clicks.startTracking();
    EXPECT_THAT(launcher.lastArguments, ElementsAre("--pointer-buttons"));
}

TEST_F(CursorTrackingServiceTest, withoutHelperFileTheTakeGoesOnWithoutKeys) {
    auto without = ports();
    without.helperPath.reset();
    CursorTrackingService keyless(kFrame, without);
    keyless.startTracking();
    keyless.setStartDate(clock.now());
    main.runAll();
    EXPECT_TRUE(launcher.launches.empty());
    EXPECT_EQ(permission.probeStops, 0);
    EXPECT_EQ(permission.waits, 0);
    pointer.fire(Kind::leftMouseDown);
    EXPECT_THAT(keyless.events(), SizeIs(1));
}

TEST_F(CursorTrackingServiceTest, failedLaunchWaitsForThePermissionAndTriesAgain) {
    launcher.fails = true;
    startStamped();
    EXPECT_TRUE(permission.isAwaited());
    launcher.fails = false;
    permission.grant();
    EXPECT_THAT(launcher.launches, SizeIs(2));
    sayKey(R"({"t":1,"c":"a"})");
    EXPECT_THAT(service.events(), SizeIs(1));
}

TEST_F(CursorTrackingServiceTest, secondFailedLaunchInstallsNoSecondWait) {
    launcher.fails = true;
    service.startTracking();
    permission.grant();
    EXPECT_THAT(launcher.launches, SizeIs(2));
    EXPECT_EQ(permission.waits, 1);
}

TEST_F(CursorTrackingServiceTest, stopEndsTheWaitForThePermission) {
    launcher.fails = true;
    service.startTracking();
    service.stopTracking();
    EXPECT_FALSE(permission.isAwaited());
}

TEST_F(CursorTrackingServiceTest, stopKeepsTheLogAndTheImages) {
    startStamped();
    pointer.fire(Kind::leftMouseDown);
    service.stopTracking();
    pointer.fire(Kind::leftMouseDown);
    EXPECT_THAT(pointer.monitors, SizeIs(0));
    EXPECT_THAT(service.events(), SizeIs(1));
    EXPECT_THAT(service.cursorImageInfos(), SizeIs(1));
}

TEST_F(CursorTrackingServiceTest, startEmptiesAnEarlierLog) {
    startStamped();
    pointer.current = cursorOf(5);
    pointer.fire(Kind::leftMouseDown);
    service.stopTracking();
    service.startTracking();
    EXPECT_TRUE(service.events().empty());
    EXPECT_THAT(service.cursorImageInfos(), SizeIs(1));
}

TEST_F(CursorTrackingServiceTest, keyOnItsWayToAServiceThatIsGoneIsForgotten) {
    {
        CursorTrackingService gone(kFrame, ports());
        gone.startTracking();
        gone.setStartDate(clock.now());
        launcher.say(R"({"t":1,"c":"a"})");
    }
    EXPECT_GT(main.waiting(), 0U);
    main.runAll();
}

} // namespace
} // namespace tavi
