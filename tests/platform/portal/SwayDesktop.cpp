#include "platform/portal/SwayDesktop.h"

#include "support/Sockets.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace tavi::test {

namespace {

/// Sway refuses to run as root, and its runtime folder must be its user's own.
std::string folderOfSway() {
    return std::string(std::getenv("XDG_RUNTIME_DIR")) + "/sway";
}

} // namespace

SwayDesktop::SwayDesktop() : PrivateDesktop("sway", "") {
    const std::string run = m_folder / "run";
    const std::string own = folderOfSway();
    std::filesystem::create_directories(own);
    chmod(run.c_str(), 0711);
    chmod(own.c_str(), 0700);
    if (geteuid() == 0) {
        EXPECT_EQ(chown(own.c_str(), 65534, 65534), 0);
    }
    writeFile(m_folder / "sway.conf",
              fmt::format("xwayland disable\ndefault_border none\n"
                          "output HEADLESS-1 mode {}x{}@60Hz position 0 0\n",
                          kWidth, kHeight));
    chmod((m_folder / "sway.conf").c_str(), 0644);
    launch({"sway", "-c", (m_folder / "sway.conf").string()},
           {{"WLR_BACKENDS", "headless"},
            {"WLR_RENDERER", "pixman"},
            {"WLR_LIBINPUT_NO_DEVICES", "1"},
            {"WLR_HEADLESS_OUTPUTS", "1"},
            {"XDG_RUNTIME_DIR", own},
            {"HOME", own},
            {"SWAYSOCK", own + "/control"}},
           User::nobody);
    const std::string display = own + "/wayland-1";
    m_control = own + "/control";
    EXPECT_TRUE(waitFor([&] { return isListenedTo(display) && isListenedTo(m_control); }, 60))
        << "sway does not start: " << log("sway");
    setenv("WAYLAND_DISPLAY", display.c_str(), 1); // the surroundings take it back
    writeFile(m_folder / "home/.config/xdg-desktop-portal-wlr/config",
              "[screencast]\nchooser_type=none\noutput_name=HEADLESS-1\n");
    launch({"/usr/libexec/xdg-desktop-portal-wlr"}, {{"LD_PRELOAD", TAVI_SHARED_MEMORY_CASTS}});
    EXPECT_TRUE(waitForService(QStringLiteral("org.freedesktop.impl.portal.desktop.wlr")))
        << "sway's portal does not start: " << log("xdg-desktop-portal-wlr");
    launch({"/usr/libexec/xdg-desktop-portal"});
    EXPECT_TRUE(waitForPortal()) << "the portal does not start: " << log("xdg-desktop-portal");
    launch({"foot", "-o", fmt::format("colors.background={:06x}", kColour), "sh", "-c",
            "while :; do date +%N; sleep .1; done"});
    EXPECT_TRUE(waitFor([this] { return hasTerminal(); }, 60)) << log("foot");
}

/// A window is in the tree from its first picture on.
bool SwayDesktop::hasTerminal() const {
    const std::string command = fmt::format(
        "test -n \"$(swaymsg -s '{}' -t get_tree 2>&1 | grep '\"app_id\": *\"foot\"')\"",
        m_control);
    return std::system(command.c_str()) == 0;
}

void SwayDesktop::turnMonitor(const std::string& transform) {
    const std::string command =
        fmt::format("swaymsg -q -s '{}' output HEADLESS-1 transform {}", m_control, transform);
    EXPECT_EQ(std::system(command.c_str()), 0) << log("sway");
}

} // namespace tavi::test
