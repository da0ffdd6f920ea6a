#include "platform/x11/X11ShareableContent.h"

#include "platform/x11/XTestServer.h"

#include <gmock/gmock.h>

#include <string_view>

namespace tavi {
namespace {

void setProperty(const test::Painter& client, xcb_window_t window, const char* name,
                 xcb_atom_t type, std::uint8_t format, std::string_view bytes) {
    const std::string text(name);
    auto* reply =
        xcb_intern_atom_reply(client.connection(),
                              xcb_intern_atom(client.connection(), 0,
                                              static_cast<std::uint16_t>(text.size()), text.data()),
                              nullptr);
    xcb_change_property(client.connection(), XCB_PROP_MODE_REPLACE, window, reply->atom, type,
                        format, static_cast<std::uint32_t>(bytes.size() * 8 / format),
                        bytes.data());
    std::free(reply);
}

std::string_view asBytes(const std::vector<xcb_window_t>& windows) {
    return {reinterpret_cast<const char*>(windows.data()), windows.size() * sizeof(xcb_window_t)};
}

TEST(X11ShareableContent, displaysAreFlippedToTheBottomLeft) {
    const test::XTestServer server("640x480x24");
    ASSERT_TRUE(server.run("xrandr --setmonitor TOP 640/169x200/53+0+0 screen"));
    ASSERT_TRUE(server.run("xrandr --setmonitor BOTTOM 640/169x280/74+0+200 none"));
    const auto content = X11ShareableContent(server.name()).content();
    ASSERT_TRUE(content);
    ASSERT_EQ(content->displays.size(), 2U);
    EXPECT_EQ(content->displays[0].name, "TOP");
    EXPECT_EQ(content->displays[0].frame, (Rect{0, 280, 640, 200}));
    EXPECT_EQ(content->displays[1].name, "BOTTOM");
    EXPECT_EQ(content->displays[1].frame, (Rect{0, 0, 640, 280}));
    EXPECT_EQ(content->displays[1].height, 280);
    EXPECT_NE(content->displays[0].id, content->displays[1].id);
}

TEST(X11ShareableContent, windowsComeFromTheManagersList) {
    const test::XTestServer server("640x480x24");
    test::Painter client(server);
    const xcb_window_t one = client.addWindow(10, 20, 200, 100, 0xFF);
    const xcb_window_t two = client.addWindow(50, 60, 300, 150, 0xFF);
    const xcb_window_t gone = 0x7777777;
    setProperty(client, one, "_NET_WM_NAME", XCB_ATOM_STRING, 8, "Grüße");
    setProperty(client, one, "WM_CLASS", XCB_ATOM_STRING, 8,
                std::string_view("inst\0Editor\0", 12));
    setProperty(client, two, "WM_NAME", XCB_ATOM_STRING, 8, "plain");
    xcb_unmap_window(client.connection(), two);
    setProperty(client, client.root(), "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW, 32,
                asBytes({two, gone, one}));
    client.sync();
    const auto content = X11ShareableContent(server.name()).content();
    ASSERT_TRUE(content);
    ASSERT_EQ(content->windows.size(), 2U);
    EXPECT_EQ(content->windows[0].id, two);
    EXPECT_EQ(content->windows[0].title, "plain");
    EXPECT_FALSE(content->windows[0].isOnScreen);
    EXPECT_EQ(content->windows[1],
              (Window{one, "Grüße", "Editor", "Editor", {10, 360, 200, 100}, true}));
}

/// The atom of a name, as the bytes of a property.
std::string atomBytes(const test::Painter& client, const std::string& name) {
    auto* reply =
        xcb_intern_atom_reply(client.connection(),
                              xcb_intern_atom(client.connection(), 0,
                                              static_cast<std::uint16_t>(name.size()), name.data()),
                              nullptr);
    std::string bytes(reinterpret_cast<const char*>(&reply->atom), sizeof(reply->atom));
    std::free(reply);
    return bytes;
}

TEST(X11ShareableContent, windowsOfTheDesktopItselfAreLeftOut) {
    const test::XTestServer server("640x480x24");
    test::Painter client(server);
    const std::vector<std::pair<std::vector<std::string>, bool>> cases{
        {{}, true},
        {{"NORMAL"}, true},
        {{"DIALOG"}, true},
        {{"UTILITY"}, true},
        {{"DOCK"}, false},
        {{"DESKTOP"}, false},
        {{"SPLASH"}, false},
        {{"NOTIFICATION"}, false},
        {{"TOOLTIP"}, false},
        {{"NOBODY_KNOWS", "DOCK", "NORMAL"}, false},
        {{"NOBODY_KNOWS", "NORMAL", "DOCK"}, true},
        {{"NOBODY_KNOWS"}, true},
    };
    std::vector<xcb_window_t> all;
    std::vector<std::uint32_t> wanted;
    for (const auto& [types, isListed] : cases) {
        const xcb_window_t window = client.addWindow(10, 20, 200, 100, 0xFF);
        std::string bytes;
        for (const auto& type : types) {
            bytes += atomBytes(client, "_NET_WM_WINDOW_TYPE_" + type);
        }
        setProperty(client, window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, 32, bytes);
        all.push_back(window);
        if (isListed) {
            wanted.push_back(window);
        }
    }
    setProperty(client, client.root(), "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW, 32,
                asBytes(all));
    client.sync();
    const auto windows = X11ShareableContent(server.name()).content().value().windows;
    std::vector<std::uint32_t> listed;
    for (const auto& window : windows) {
        listed.push_back(window.id);
    }
    EXPECT_EQ(listed, wanted);
}

TEST(X11ShareableContent, programsAreNamedByTheirDesktopEntryWhereTheySay) {
    const test::XTestServer server("640x480x24");
    test::Painter client(server);
    const xcb_window_t one = client.addWindow(10, 20, 200, 100, 0xFF);
    const xcb_window_t two = client.addWindow(10, 20, 200, 100, 0xFF);
    for (const auto window : {one, two}) {
        setProperty(client, window, "WM_CLASS", XCB_ATOM_STRING, 8,
                    std::string_view("inst\0Editor\0", 12));
    }
    setProperty(client, one, "_GTK_APPLICATION_ID", XCB_ATOM_STRING, 8, "org.example.One");
    setProperty(client, two, "_KDE_NET_WM_DESKTOP_FILE", XCB_ATOM_STRING, 8, "org.example.two");
    setProperty(client, client.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, 32,
                asBytes({one, two}));
    client.sync();
    const auto windows = X11ShareableContent(server.name()).content().value().windows;
    ASSERT_EQ(windows.size(), 2U);
    EXPECT_EQ(windows[0].applicationId, "org.example.One");
    EXPECT_EQ(windows[1].applicationId, "org.example.two");
    EXPECT_EQ(windows[1].applicationName, "Editor");
}

TEST(X11ShareableContent, withoutWindowManagerThereAreNoWindows) {
    const test::XTestServer server("64x64x24");
    EXPECT_TRUE(X11ShareableContent(server.name()).content().value().windows.empty());
}

TEST(X11ShareableContent, missingServerIsTold) {
    const auto content = X11ShareableContent(":9871").content();
    ASSERT_FALSE(content);
    EXPECT_EQ(content.error().kind, CaptureError::Kind::noWindowSystem);
    EXPECT_THAT(content.error().description(), testing::HasSubstr(":9871"));
}

} // namespace
} // namespace tavi
