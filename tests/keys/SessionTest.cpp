#include "base/DesktopSession.h"
#include "support/RunningKeys.h"

namespace tavi {
namespace {

struct SessionCase {
    const char* type;
    const char* waylandDisplay;
    bool isWayland;
};

class Session : public testing::TestWithParam<SessionCase> {};

TEST_P(Session, isKnownByItsVariables) {
    const auto [type, waylandDisplay, isWayland] = GetParam();
    const test::Environment environment(
        test::Variables{{"XDG_SESSION_TYPE", type}, {"WAYLAND_DISPLAY", waylandDisplay}});
    EXPECT_EQ(isWaylandSession(), isWayland);
}

INSTANTIATE_TEST_SUITE_P(
    Variables, Session,
    testing::Values(SessionCase{"wayland", "wayland-0", true}, SessionCase{"wayland", "", true},
                    SessionCase{"tty", "wayland-1", true}, SessionCase{"", "wayland-1", true},
                    SessionCase{"x11", "wayland-1", false}, // nested
                    SessionCase{"x11", "", false}, SessionCase{"tty", "", false},
                    SessionCase{"", "", false}));

} // namespace
} // namespace tavi
