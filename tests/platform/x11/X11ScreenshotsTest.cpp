#include "platform/x11/X11Screenshots.h"

#include "platform/x11/WatchedStream.h"
#include "platform/x11/X11ShareableContent.h"

#include <gmock/gmock.h>

#include <thread>

namespace tavi {
namespace {

using test::Painter;
using test::pixelAt;
using test::XTestServer;

class X11ScreenshotsTest : public testing::Test {
protected:
    X11ScreenshotsTest() { painter.fill(0, 0, 1280, 800, 0x204060); }

    ScreenFilter display() const {
        return ScreenFilter::display(
            X11ShareableContent(server.name()).content().value().displays.at(0).id);
    }

    /// A window whose cursor is a large black picture.
    xcb_window_t addWindow() { return painter.addWindow(200, 100, 400, 300, 0x00FF00, 0); }

    XTestServer server{"1280x800x24"};
    Painter painter{server};
    X11Screenshots screenshots{server.name()};
};

/// Pixels that are not of the colour.
int strange(const PixelBuffer& image, std::uint32_t colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += pixelAt(image, x, y) != colour ? 1 : 0;
        }
    }
    return count;
}

TEST_F(X11ScreenshotsTest, displayIsScaledDown) {
    painter.fill(640, 0, 640, 800, 0xC08040);
    const auto image =
        screenshots.captureImage(display(), thumbnailConfiguration(1280, 800, false));
    ASSERT_TRUE(image) << image.error().description();
    EXPECT_EQ((*image)->width(), 640);
    EXPECT_EQ((*image)->height(), 400);
    EXPECT_EQ(pixelAt(**image, 319, 399), 0xFF204060U);
    EXPECT_EQ(pixelAt(**image, 320, 0), 0xFFC08040U);
}

TEST_F(X11ScreenshotsTest, fineDetailIsAveraged) {
    std::vector<std::uint32_t> stripes(1280 * 2);
    for (std::size_t i = 0; i < stripes.size(); ++i) {
        stripes[i] = i % 2 == 0 ? 0xFFFFFF : 0;
    }
    painter.put(0, 0, 1280, 2, stripes);
    const auto image =
        screenshots.captureImage(display(), thumbnailConfiguration(1280, 800, false));
    ASSERT_TRUE(image);
    EXPECT_EQ(pixelAt(**image, 100, 0), 0xFF808080U);
}

TEST_F(X11ScreenshotsTest, cursorIsInADisplaysPictureOnlyWhereItIsAskedFor) {
    addWindow();
    ASSERT_TRUE(server.run("xdotool mousemove 400 250"));
    const ScreenFilter filter = display();
    const auto without = screenshots.captureImage(filter, {1280, 800, false});
    const auto with = screenshots.captureImage(filter, {1280, 800, true});
    ASSERT_TRUE(without && with);
    int differing = 0;
    for (int y = 0; y < 800; ++y) {
        for (int x = 0; x < 1280; ++x) {
            if (pixelAt(**with, x, y) != pixelAt(**without, x, y)) {
                ++differing;
                EXPECT_NEAR(x, 400, 32);
                EXPECT_NEAR(y, 250, 32);
            }
        }
    }
    EXPECT_GT(differing, 10);
}

TEST_F(X11ScreenshotsTest, cursorAtTheEdgeIsCutOff) {
    ASSERT_TRUE(server.run("xdotool mousemove 1279 799"));
    EXPECT_TRUE(screenshots.captureImage(display(), {640, 400, true}));
    ASSERT_TRUE(server.run("xdotool mousemove 0 0"));
    EXPECT_TRUE(screenshots.captureImage(display(), {640, 400, true}));
}

TEST_F(X11ScreenshotsTest, coveredWindowIsWholeAndWithoutCursor) {
    const xcb_window_t window = addWindow();
    ASSERT_TRUE(server.run("xdotool mousemove 400 250"));
    painter.addWindow(0, 0, 500, 300, 0xFF0000);
    const auto image = screenshots.captureImage(ScreenFilter::window(window),
                                                thumbnailConfiguration(400, 300, false));
    ASSERT_TRUE(image) << image.error().description();
    EXPECT_EQ((*image)->width(), 640);
    EXPECT_EQ((*image)->height(), 480);
    EXPECT_EQ(strange(**image, 0xFF00FF00U), 0);
}

TEST_F(X11ScreenshotsTest, severalAreTakenAtATime) {
    std::vector<xcb_window_t> windows;
    for (int i = 0; i < 6; ++i) {
        windows.push_back(painter.addWindow(10 * i, 10 * i, 300, 200, 0x102030U * (i + 1U)));
    }
    std::vector<PixelBufferPtr> images(windows.size());
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < windows.size(); ++i) {
            threads.emplace_back([&, i] {
                images[i] = screenshots
                                .captureImage(ScreenFilter::window(windows[i]),
                                              thumbnailConfiguration(300, 200, false))
                                .value_or(nullptr);
            });
        }
    }
    for (std::size_t i = 0; i < images.size(); ++i) {
        ASSERT_TRUE(images[i]) << i;
        EXPECT_EQ(strange(*images[i], 0xFF000000U | 0x102030U * (static_cast<unsigned>(i) + 1U)), 0)
            << i;
    }
}

TEST_F(X11ScreenshotsTest, sourceThatIsNotThereIsTold) {
    EXPECT_EQ(
        screenshots.captureImage(ScreenFilter::window(0x7777777), {64, 64, false}).error().kind,
        CaptureError::Kind::sourceGone);
    EXPECT_EQ(screenshots.captureImage(ScreenFilter::display(999'999), {64, 64, true}).error().kind,
              CaptureError::Kind::sourceGone);
}

} // namespace
} // namespace tavi
