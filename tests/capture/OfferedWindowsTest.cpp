#include "capture/OfferedWindows.h"

#include <gmock/gmock.h>

#include <functional>

namespace tavi {
namespace {

Window ordinary() {
    return {1, "notes", "Editor", "org.example.Editor", {0, 0, 101, 101}, true};
}

struct OfferCase {
    const char* name;
    std::function<void(Window&)> change;
    bool isOffered;
};

class OfferedWindows : public testing::TestWithParam<OfferCase> {};

TEST_P(OfferedWindows, areChosenByTheirLook) {
    Window window = ordinary();
    GetParam().change(window);
    EXPECT_EQ(offeredWindows(std::vector{window}).size(), GetParam().isOffered ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, OfferedWindows,
    testing::Values(
        OfferCase{"ordinary", [](Window&) {}, true},
        OfferCase{"notShown", [](Window& w) { w.isOnScreen = false; }, false},
        OfferCase{"width100", [](Window& w) { w.frame.width = 100; }, false},
        OfferCase{"height100", [](Window& w) { w.frame.height = 100; }, false},
        OfferCase{"noApplicationName", [](Window& w) { w.applicationName.clear(); }, false},
        OfferCase{"noApplicationId", [](Window& w) { w.applicationId.clear(); }, true},
        OfferCase{"theDesktopsShell", [](Window& w) { w.applicationId = "plasmashell"; }, false},
        OfferCase{"untitledLow",
                  [](Window& w) {
                      w.title.clear();
                      w.frame.height = 199.5;
                  },
                  false},
        OfferCase{"untitledHigh",
                  [](Window& w) {
                      w.title.clear();
                      w.frame.height = 200;
                  },
                  true}),
    [](const auto& tested) { return tested.param.name; });

TEST(OfferedWindowsList, keepsItsOrder) {
    std::vector<Window> windows(4, ordinary());
    for (std::uint32_t i = 0; i < 4; ++i) {
        windows[i].id = i;
    }
    windows[2].isOnScreen = false;
    const auto offered = offeredWindows(windows);
    ASSERT_EQ(offered.size(), 3U);
    EXPECT_EQ(offered[0].id, 0U);
    EXPECT_EQ(offered[1].id, 1U);
    EXPECT_EQ(offered[2].id, 3U);
}

TEST(OfferedWindowsList, leavesTheProgramsOwnWindowsOut) {
    std::vector<Window> windows(2, ordinary());
    windows[1].applicationId = "tavlin";
    EXPECT_EQ(offeredWindows(windows, "tavlin").size(), 1U);
    EXPECT_EQ(offeredWindows(windows).size(), 2U);
    windows[0].applicationId.clear();
    EXPECT_EQ(offeredWindows(windows, "").size(), 2U) << "no name is nobody's";
}

} // namespace
} // namespace tavi
