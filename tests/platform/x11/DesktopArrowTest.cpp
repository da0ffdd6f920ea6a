#include "platform/x11/DesktopArrow.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace tavi {
namespace {

/// Without a server; the environment is put back.
class DesktopArrow : public testing::Test {
protected:
    DesktopArrow() {
        unsetenv("DISPLAY");
        unsetenv("XCURSOR_PATH");
        unsetenv("XCURSOR_THEME");
    }
    ~DesktopArrow() override {
        unsetenv("XCURSOR_PATH");
        unsetenv("XCURSOR_THEME");
    }
};

int opaquest(const PixelBuffer& image, int left, int top, int right, int bottom) {
    int most = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            most = std::max<int>(most, image.row(y)[x * 4 + 3]);
        }
    }
    return most;
}

TEST_F(DesktopArrow, ofTheInstalledThemeFillsItsPicture) {
    setenv("XCURSOR_THEME", "Adwaita", 1);
    const PixelBufferPtr arrow = desktopArrow(96);
    ASSERT_TRUE(arrow);
    const int width = arrow->width();
    const int height = arrow->height();
    EXPECT_GT(height, 40);
    EXPECT_LE(height, 96);
    EXPECT_GT(height, width); // an arrow is higher than it is wide
    EXPECT_GT(opaquest(*arrow, 0, 0, width, 1), 0);
    EXPECT_GT(opaquest(*arrow, 0, height - 1, width, height), 0);
    EXPECT_GT(opaquest(*arrow, 0, 0, 1, height), 0);
    EXPECT_GT(opaquest(*arrow, width - 1, 0, width, height), 0);
    // The tip.
    EXPECT_GT(opaquest(*arrow, 0, 0, width / 4, height / 8), 200);
}

TEST_F(DesktopArrow, isNullWithoutATheme) {
    const test::TemporaryFolder folder;
    setenv("XCURSOR_PATH", folder.path().c_str(), 1);
    EXPECT_EQ(desktopArrow(96), nullptr);
}

} // namespace
} // namespace tavi
