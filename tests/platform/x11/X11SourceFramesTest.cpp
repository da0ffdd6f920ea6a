#include "platform/x11/X11SourceFrames.h"

#include "platform/x11/X11ShareableContent.h"
#include "platform/x11/XTestServer.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using test::Painter;
using test::XTestServer;

TEST(X11SourceFrames, displayIsWhereTheListSays) {
    const XTestServer server("800x600x24");
    ASSERT_TRUE(server.run("xrandr --setmonitor left 300/80x600/160+0+0 screen"));
    ASSERT_TRUE(server.run("xrandr --setmonitor right 500/130x400/100+300+100 none"));
    const auto content = X11ShareableContent(server.name()).content();
    ASSERT_TRUE(content);
    ASSERT_EQ(content->displays.size(), 2U);
    X11SourceFrames frames(server.name());
    for (const Display& display : content->displays) {
        EXPECT_EQ(frames.displayFrame(display.id), display.frame) << display.name;
    }
    EXPECT_EQ(frames.displayFrame(content->displays[1].id), (Rect{300, 100, 500, 400}));
    EXPECT_EQ(frames.displayFrame(4711), std::nullopt);
}

TEST(X11SourceFrames, windowIsFollowedFromTheBottomLeftUntilItIsClosed) {
    const XTestServer server("800x600x24");
    Painter painter(server);
    const xcb_window_t window = painter.addWindow(100, 50, 300, 200, 0x808080);
    X11SourceFrames frames(server.name());
    EXPECT_EQ(frames.windowFrame(window), (Rect{100, 350, 300, 200}));
    ASSERT_TRUE(server.run("xdotool windowmove " + std::to_string(window) + " -20 400"));
    painter.sync();
    EXPECT_EQ(frames.windowFrame(window), (Rect{-20, 0, 300, 200}));
    xcb_destroy_window(painter.connection(), window);
    painter.sync();
    EXPECT_EQ(frames.windowFrame(window), std::nullopt);
}

TEST(X11SourceFrames, nothingIsAnywhereWithoutAServer) {
    XTestServer server;
    X11SourceFrames frames(server.name());
    ASSERT_TRUE(frames.displayFrame(X11ShareableContent(server.name()).content()->displays[0].id));
    server.die();
    EXPECT_EQ(frames.displayFrame(1), std::nullopt);
    EXPECT_EQ(frames.windowFrame(1), std::nullopt);
    EXPECT_EQ(X11SourceFrames(":987").windowFrame(1), std::nullopt);
}

} // namespace
} // namespace tavi
