#include "editor/CanvasGeometry.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(CanvasGeometry, wideFrameTakesTheWidth) {
    const CanvasGeometry geometry = canvasGeometry({1024, 1000}, {1920, 1080});
    EXPECT_EQ(geometry.frame, (Rect{12, 218.75, 1000, 562.5}));
    EXPECT_DOUBLE_EQ(geometry.scale, 1000.0 / 1920);
}

TEST(CanvasGeometry, tallFrameTakesTheHeight) {
    const CanvasGeometry geometry = canvasGeometry({1024, 624}, {1080, 1080});
    EXPECT_EQ(geometry.frame, (Rect{212, 12, 600, 600}));
    EXPECT_DOUBLE_EQ(geometry.scale, 600.0 / 1080);
}

TEST(CanvasGeometry, exactFitLeavesHalfTheMarginAllAround) {
    EXPECT_EQ(canvasGeometry({1624, 924}, {1600, 900}).frame, (Rect{12, 12, 1600, 900}));
}

TEST(CanvasGeometry, noRoomNoFrame) {
    EXPECT_EQ(canvasGeometry({20, 500}, {1920, 1080}).frame.width, 0);
    EXPECT_EQ(canvasGeometry({0, 0}, {1920, 1080}).scale, 0);
}

TEST(CanvasGeometry, outputWithoutAreaDividesNothingByZero) {
    EXPECT_EQ(canvasGeometry({800, 600}, {0, 1080}), CanvasGeometry{});
    EXPECT_EQ(canvasGeometry({800, 600}, {1920, 0}), CanvasGeometry{});
}

} // namespace
} // namespace tavi
