#include "platform/x11/X11Pointer.h"

#include "capture/CursorImageBytes.h"
#include "platform/x11/X11PointerMonitors.h"
#include "platform/x11/XTestServer.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

namespace tavi {
namespace {

using Kind = PointerEventKind;
using testing::Each;
using testing::ElementsAre;

struct Seen {
    Kind kind;
    Point place;

    bool operator==(const Seen&) const = default;
};

class X11PointerTest : public testing::Test {
protected:
    X11PointerTest() {
        test::ensureQtApplication();
        monitors = std::move(X11PointerMonitors::open(server.name()).value());
        pointer = std::move(X11Pointer::open(server.name()).value());
        EXPECT_TRUE(server.run("xset m 1/1 0")); // relative moves are then exact
        EXPECT_TRUE(server.run("xdotool mousemove 100 100"));
    }

    void watch(Kind kind) {
        tokens.push_back(*monitors->addGlobalMonitor(kind, [this, kind] {
            seen.push_back({kind, pointer->query()});
        }));
    }
    void watchAll() {
        for (const Kind kind : {Kind::mouseMoved, Kind::leftMouseDragged, Kind::leftMouseDown,
                                Kind::leftMouseUp, Kind::rightMouseDown, Kind::scrollWheel}) {
            watch(kind);
        }
    }
    bool sees(std::size_t count) {
        return test::waitFor([&] { return seen.size() >= count; });
    }

    test::XTestServer server;
    std::unique_ptr<X11PointerMonitors> monitors;
    std::unique_ptr<X11Pointer> pointer;
    std::vector<PointerMonitors::Token> tokens;
    std::vector<Seen> seen;
};

TEST_F(X11PointerTest, positionCountsFromTheBottomLeft) {
    EXPECT_EQ(pointer->query(), (Point{100, 380}));
    ASSERT_TRUE(server.run("xdotool mousemove 0 479"));
    EXPECT_EQ(pointer->query(), (Point{0, 1}));
}

TEST_F(X11PointerTest, eachKindIsSeenAtItsPlace) {
    watchAll();
    ASSERT_TRUE(server.run("xdotool mousemove_relative 20 30"));
    ASSERT_TRUE(sees(1));
    ASSERT_TRUE(server.run("xdotool mousedown 1"));
    ASSERT_TRUE(sees(2));
    ASSERT_TRUE(server.run("xdotool mousemove_relative -- -5 10"));
    ASSERT_TRUE(sees(3));
    ASSERT_TRUE(server.run("xdotool mouseup 1"));
    ASSERT_TRUE(sees(4));
    ASSERT_TRUE(server.run("xdotool click 3"));
    ASSERT_TRUE(sees(5));
    EXPECT_THAT(seen, ElementsAre(Seen{Kind::mouseMoved, {120, 350}},
                                  Seen{Kind::leftMouseDown, {120, 350}},
                                  Seen{Kind::leftMouseDragged, {115, 340}},
                                  Seen{Kind::leftMouseUp, {115, 340}},
                                  Seen{Kind::rightMouseDown, {115, 340}}));
}

TEST_F(X11PointerTest, everyWheelTickInAnyDirectionIsAScroll) {
    watchAll();
    ASSERT_TRUE(server.run("xdotool click 4 click 5 click 6 click 7"));
    ASSERT_TRUE(sees(4));
    EXPECT_THAT(seen, Each(Seen{Kind::scrollWheel, {100, 380}}));
    EXPECT_EQ(seen.size(), 4U);
}

TEST_F(X11PointerTest, otherButtonsAndReleasesAreNotWatched) {
    watchAll();
    ASSERT_TRUE(server.run("xdotool click 2 click 8 click 3 click 1"));
    ASSERT_TRUE(sees(3));
    test::runLoopFor(0.05);
    EXPECT_THAT(seen, ElementsAre(Seen{Kind::rightMouseDown, {100, 380}},
                                  Seen{Kind::leftMouseDown, {100, 380}},
                                  Seen{Kind::leftMouseUp, {100, 380}}));
}

TEST_F(X11PointerTest, leftHandedMappingSwapsTheButtons) {
    const test::Painter client(server);
    const std::array<std::uint8_t, 3> swapped{3, 2, 1};
    std::free(xcb_get_pointer_mapping_reply(client.connection(),
                                            xcb_get_pointer_mapping(client.connection()), nullptr));
    const XOwned<xcb_get_pointer_mapping_reply_t> now(xcb_get_pointer_mapping_reply(
        client.connection(), xcb_get_pointer_mapping(client.connection()), nullptr));
    std::vector<std::uint8_t> mapping(xcb_get_pointer_mapping_map(now.get()),
                                      xcb_get_pointer_mapping_map(now.get()) +
                                          xcb_get_pointer_mapping_map_length(now.get()));
    std::copy(swapped.begin(), swapped.end(), mapping.begin());
    std::free(xcb_set_pointer_mapping_reply(
        client.connection(),
        xcb_set_pointer_mapping(client.connection(), static_cast<std::uint8_t>(mapping.size()),
                                mapping.data()),
        nullptr));
    watchAll();
    ASSERT_TRUE(server.run("xdotool click 1"));
    ASSERT_TRUE(sees(1));
    EXPECT_EQ(seen[0].kind, Kind::rightMouseDown);
}

TEST_F(X11PointerTest, eventsComeWhileAnotherProgramGrabsThePointer) {
    const test::Painter grabber(server);
    std::free(xcb_grab_pointer_reply(grabber.connection(),
                                     xcb_grab_pointer(grabber.connection(), 0, grabber.root(),
                                                      XCB_EVENT_MASK_BUTTON_PRESS,
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                                      XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
                                     nullptr));
    watchAll();
    ASSERT_TRUE(server.run("xdotool click 1"));
    EXPECT_TRUE(sees(2));
}

TEST_F(X11PointerTest, removedMonitorIsNotCalled) {
    watch(Kind::scrollWheel);
    watch(Kind::leftMouseDown);
    monitors->removeMonitor(tokens[0]);
    ASSERT_TRUE(server.run("xdotool click 4 click 1"));
    ASSERT_TRUE(sees(1));
    EXPECT_THAT(seen, ElementsAre(Seen{Kind::leftMouseDown, {100, 380}}));
    monitors->removeMonitor(tokens[1]);
    ASSERT_TRUE(server.run("xdotool click 1"));
    test::runLoopFor(0.1);
    EXPECT_EQ(seen.size(), 1U);
}

TEST_F(X11PointerTest, monitorMayRemoveItselfWhileItIsCalled) {
    tokens.push_back(*monitors->addGlobalMonitor(Kind::scrollWheel, [this] {
        seen.push_back({Kind::scrollWheel, {}});
        monitors->removeMonitor(tokens[0]);
    }));
    ASSERT_TRUE(server.run("xdotool click 4 click 4"));
    ASSERT_TRUE(sees(1));
    test::runLoopFor(0.05);
    EXPECT_EQ(seen.size(), 1U);
}

TEST_F(X11PointerTest, cursorImageFollowsThePointer) {
    test::Painter painter(server);
    painter.addWindow(200, 200, 50, 50, 0, 152); // "xterm"
    painter.addWindow(300, 200, 50, 50, 0, 34);  // "crosshair"
    ASSERT_TRUE(server.run("xdotool mousemove 220 220"));
    const auto beam = pointer->currentSystemCursor();
    ASSERT_TRUE(beam);
    ASSERT_TRUE(server.run("xdotool mousemove 320 220"));
    const auto cross = pointer->currentSystemCursor();
    ASSERT_TRUE(server.run("xdotool mousemove 225 225"));
    const auto again = pointer->currentSystemCursor();
    ASSERT_TRUE(cross && again);
    EXPECT_NE(beam->imageBytes, cross->imageBytes);
    EXPECT_EQ(beam->imageBytes, again->imageBytes);
    EXPECT_GT(beam->size.width, 4);
    EXPECT_LT(beam->hotSpot.x, beam->size.width);

    const auto image = cursorImageFromBytes(beam->imageBytes);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width(), static_cast<int>(beam->size.width));
    int opaque = 0;
    for (int y = 0; y < image->height(); ++y) {
        for (int x = 0; x < image->width(); ++x) {
            opaque += image->row(y)[x * 4 + 3] == 255 ? 1 : 0;
        }
    }
    EXPECT_GT(opaque, 10);
}

TEST_F(X11PointerTest, arrowIsThatOfTheChosenTheme) {
    const std::filesystem::path file = "/usr/share/icons/Adwaita/cursors/left_ptr";
    ASSERT_TRUE(std::filesystem::exists(file)) << "tools/setup installs adwaita-icon-theme";
    setenv("XCURSOR_THEME", "Adwaita", 1);
    setenv("XCURSOR_SIZE", "48", 1);
    const auto arrow = pointer->arrowCursor();
    unsetenv("XCURSOR_THEME");
    unsetenv("XCURSOR_SIZE");
    ASSERT_TRUE(arrow);
    EXPECT_EQ(arrow->size, (Size{48, 48}));
}

TEST_F(X11PointerTest, goneServerLeavesTheLastPosition) {
    const Point last = pointer->query();
    server.die();
    EXPECT_EQ(pointer->query(), last);
    EXPECT_FALSE(pointer->currentSystemCursor());
    test::runLoopFor(0.02);
}

TEST(X11PointerErrors, areTyped) {
    EXPECT_EQ(X11Pointer::open(":9871").error().kind, CaptureError::Kind::noWindowSystem);
    EXPECT_EQ(X11PointerMonitors::open(":9871").error().kind, CaptureError::Kind::noWindowSystem);
    const test::XTestServer server("64x64x24", {"-extension", "XFIXES"});
    EXPECT_EQ(X11Pointer::open(server.name()).error().kind, CaptureError::Kind::missingExtension);
}

} // namespace
} // namespace tavi
