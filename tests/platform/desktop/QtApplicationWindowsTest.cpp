#include "platform/desktop/QtApplicationWindows.h"

#include <QWindow>
#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(QtApplicationWindows, knowsWhoMinimizes) {
    for (const char* desktop : {"GNOME", "ubuntu:GNOME", "KDE", "XFCE", "labwc", "COSMIC"}) {
        EXPECT_TRUE(minimizesWindows(desktop)) << desktop;
    }
    for (const char* desktop : {"sway", "Hyprland", "niri", "river", "sway:wlroots", ""}) {
        EXPECT_FALSE(minimizesWindows(desktop)) << desktop;
    }
}

TEST(QtApplicationWindows, aWindowComesBackAsItWas) {
    QWindow shown;
    shown.showMaximized();
    QtApplicationWindows windows;
    ApplicationWindow* window = windows.windows().front();
    window->miniaturize();
    EXPECT_TRUE(window->isMiniaturized());
    window->deminiaturize();
    EXPECT_FALSE(window->isMiniaturized());
    EXPECT_TRUE(shown.isVisible());
    EXPECT_TRUE(shown.windowStates().testFlag(Qt::WindowMaximized));
}

TEST(QtApplicationWindows, leavesPanelsOut) {
    QWindow panel;
    panel.setFlags(Qt::ToolTip);
    panel.show();
    EXPECT_TRUE(QtApplicationWindows().windows().empty());
}

} // namespace
} // namespace tavi
