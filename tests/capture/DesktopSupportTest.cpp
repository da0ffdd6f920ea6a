#include "capture/DesktopSupport.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

DesktopSupport gnome() {
    DesktopSupport desktop;
    desktop.session = DesktopSupport::Session::wayland;
    desktop.desktop = "GNOME";
    desktop.portalVersion = 4;
    desktop.seesClicks = false;
    desktop.inputAccess = inputAccessAdvice("ID=debian");
    return desktop;
}

std::vector<std::string> gaps(const DesktopSupport& desktop) {
    std::vector<std::string> names;
    for (const Finding& finding : findings(desktop)) {
        if (!finding.works) {
            names.push_back(finding.name);
        }
    }
    return names;
}

/// What is told of one thing; an empty finding when nothing is.
Finding told(const DesktopSupport& desktop, const std::string& name) {
    const auto all = findings(desktop);
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Finding& f) { return f.name == name; });
    return found == all.end() ? Finding{} : *found;
}

TEST(DesktopSupport, aWholeDesktopHasNoGap) {
    EXPECT_THAT(gaps(gnome()), IsEmpty());
    DesktopSupport x11;
    x11.session = DesktopSupport::Session::x11;
    EXPECT_THAT(gaps(x11), IsEmpty());
    EXPECT_EQ(told(x11, "session").detail, "X11");
    EXPECT_EQ(told(gnome(), "session").detail, "Wayland (GNOME), ScreenCast portal version 4");
}

TEST(DesktopSupport, everyGapHasItsCostAndItsFixAndNothingElseHas) {
    DesktopSupport poor = gnome();
    poor.castsWindows = false;
    poor.cursorMode = CursorMode::embedded;
    poor.isHelperListening = false;
    poor.tray = DesktopSupport::Tray::none;
    poor.awake = DesktopSupport::Awake::nobody;
    EXPECT_THAT(gaps(poor), ElementsAre("sources", "pointer", "keys", "tray", "sleep"));
    for (const DesktopSupport& desktop : {poor, gnome(), DesktopSupport{}}) {
        for (const Finding& finding : findings(desktop)) {
            EXPECT_FALSE(finding.detail.empty()) << finding.name;
            EXPECT_EQ(finding.cost.empty(), finding.works) << finding.name;
            EXPECT_EQ(finding.fix.empty(), finding.works) << finding.name;
        }
    }
}

TEST(DesktopSupport, withoutASessionNothingElseIsTold) {
    EXPECT_THAT(gaps(DesktopSupport{}), ElementsAre("session"));
    EXPECT_EQ(findings(DesktopSupport{}).size(), 1U);
}

TEST(DesktopSupport, withoutAPortalNothingIsToldOfWhatItWouldShow) {
    DesktopSupport desktop = gnome();
    desktop.portalVersion.reset();
    EXPECT_THAT(gaps(desktop), ElementsAre("session"));
    EXPECT_THAT(told(desktop, "session").fix, HasSubstr("xdg-desktop-portal"));
    EXPECT_EQ(told(desktop, "pointer"), Finding{});
}

TEST(DesktopSupport, aPortalThatForgetsSaysSo) {
    DesktopSupport desktop = gnome();
    desktop.portalVersion = 3;
    EXPECT_THAT(told(desktop, "session").detail, HasSubstr("asks before every take"));
    EXPECT_TRUE(told(desktop, "session").works);
}

TEST(DesktopSupport, theCursorModeDecidesWhatCanBeDoneWithThePointer) {
    DesktopSupport desktop = gnome();
    desktop.cursorMode = CursorMode::hidden;
    EXPECT_THAT(told(desktop, "pointer").cost, HasSubstr("can't be drawn"));
    desktop.cursorMode = CursorMode::embedded;
    EXPECT_THAT(told(desktop, "pointer").cost, HasSubstr("can't move, restyle or hide it"));
}

TEST(DesktopSupport, keysWithoutTheRightTellTheCommandAndWhatItRisks) {
    DesktopSupport desktop = gnome();
    desktop.isHelperListening = false;
    EXPECT_THAT(told(desktop, "keys").cost, HasSubstr("no clicks"));
    EXPECT_THAT(told(desktop, "keys").fix, HasSubstr("sudo usermod -aG input"));
    EXPECT_THAT(told(desktop, "keys").fix, HasSubstr("passwords"));
    desktop.seesClicks = true;
    EXPECT_EQ(told(desktop, "keys").cost, "Takes have no keys") << "an X server tells of clicks";
    desktop.hasHelper = false;
    EXPECT_THAT(told(desktop, "keys").fix, HasSubstr("Install the program again"));
}

TEST(DesktopSupport, aTraysStandInCostsTheRunningTimeOnly) {
    DesktopSupport desktop = gnome();
    desktop.tray = DesktopSupport::Tray::notification;
    EXPECT_THAT(told(desktop, "tray").cost, HasSubstr("running time"));
    EXPECT_THAT(told(desktop, "tray").fix, HasSubstr("AppIndicator"));
    desktop.desktop = "XFCE";
    EXPECT_THAT(told(desktop, "tray").fix, HasSubstr("panel"));
}

} // namespace
} // namespace tavi
