#include "platform/desktop/DesktopWorkspace.h"

#include "app/ScreenPermission.h"
#include "capture/InputMonitoringService.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

struct LinkCase {
    const char* url;
    const char* desktop;
    bool isWayland;
    std::optional<SettingsTarget> target;
};

class SettingsLink : public testing::TestWithParam<LinkCase> {};

TEST_P(SettingsLink, leadsToThisDesktopsOwnPage) {
    const LinkCase& c = GetParam();
    EXPECT_EQ(settingsTarget(c.url, c.desktop, c.isWayland), c.target);
}

const SettingsTarget kScreenHelp{"", "", "screen-recording.html"};
const SettingsTarget kKeysHelp{"", "", "input-monitoring.html"};

INSTANTIATE_TEST_SUITE_P(
    Links, SettingsLink,
    testing::Values(
        LinkCase{kScreenCaptureSettingsUrl, "XFCE", false, kScreenHelp},
        LinkCase{kScreenCaptureSettingsUrl, "GNOME", false, kScreenHelp},
        LinkCase{kScreenCaptureSettingsUrl, "ubuntu:GNOME", true,
                 SettingsTarget{"gnome-control-center", "applications", "screen-recording.html"}},
        LinkCase{kScreenCaptureSettingsUrl, "KDE", true,
                 SettingsTarget{"systemsettings", "kcm_app-permissions", "screen-recording.html"}},
        LinkCase{kScreenCaptureSettingsUrl, "", true, kScreenHelp},
        LinkCase{InputMonitoringService::kSettingsUrl, "GNOME", true, kKeysHelp},
        LinkCase{"https://example.org/changelog/juniper", "GNOME", true, std::nullopt},
        LinkCase{"", "", false, std::nullopt}));

} // namespace
} // namespace tavi
