#include "base/Clock.h"
#include "platform/x11/WatchedStream.h"

#include <gmock/gmock.h>
#include <xcb/shape.h>

#include <array>
#include <chrono>
#include <ctime>
#include <thread>

namespace tavi {
namespace {

using test::colourAt;
using test::Painter;
using test::pixelAt;
using test::XTestServer;

class WindowWatch : public test::WatchedStream {
public:
    WindowWatch(const XTestServer& server, xcb_window_t window, int width, int height)
        : WatchedStream(server, ScreenFilter::window(window), width, height) {}
};

class X11WindowStreamsTest : public testing::Test {
protected:
    X11WindowStreamsTest() {
        painter.fill(0, 0, 640, 480, 0x101010);
        window = painter.addWindow(100, 80, 200, 150, 0x3070B0);
    }

    void paint(xcb_window_t target, int x, int y, int width, int height, std::uint32_t pixel) {
        painter.paint(target, x, y, width, height, pixel);
    }

    void configure(xcb_window_t target, std::uint16_t mask,
                   const std::array<std::uint32_t, 2>& values) {
        xcb_configure_window(painter.connection(), target, mask, values.data());
        painter.sync();
    }
    void move(xcb_window_t target, int x, int y) {
        configure(target, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                  {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)});
    }
    void resize(xcb_window_t target, std::uint32_t width, std::uint32_t height) {
        configure(target, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, {width, height});
    }

    /// Gives the window an outline.
    void shape(const std::vector<xcb_rectangle_t>& pieces) {
        xcb_shape_rectangles(painter.connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                             XCB_CLIP_ORDERING_UNSORTED, window, 0, 0,
                             static_cast<std::uint32_t>(pieces.size()), pieces.data());
        painter.sync();
    }

    XTestServer server;
    Painter painter{server};
    xcb_window_t window = XCB_NONE;
};

TEST_F(X11WindowStreamsTest, firstPictureIsTheWindowAlone) {
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    EXPECT_EQ(watched.last()->width(), 200);
    EXPECT_EQ(watched.last()->height(), 150);
    EXPECT_EQ(colourAt(*watched.last(), 199, 149), 0x3070B0U);
    test::runLoopFor(0.2);
    EXPECT_EQ(watched.count(), 1U) << "nothing changed";
}

TEST_F(X11WindowStreamsTest, windowThatWasCoveredBeforeIsWhole) {
    painter.addWindow(50, 40, 150, 100, 0xFF0000);
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    for (const auto& sample : watched.samples()) {
        EXPECT_EQ(colourAt(*sample.image, 0, 0), 0x3070B0U) << "not even at first";
    }
}

/// A program that paints its window itself, some time after it is asked to.
class SlowProgram {
public:
    SlowProgram(const XTestServer& server, std::uint32_t colour) : m_painter(server) {
        m_window = m_painter.addWindow(100, 80, 200, 150, 0);
        xcb_connection_t* c = m_painter.connection();
        const std::array<std::uint32_t, 2> values{XCB_BACK_PIXMAP_NONE, XCB_EVENT_MASK_EXPOSURE};
        xcb_change_window_attributes(c, m_window, XCB_CW_BACK_PIXMAP | XCB_CW_EVENT_MASK,
                                     values.data());
        m_gc = xcb_generate_id(c);
        xcb_create_gc(c, m_gc, m_window, XCB_GC_FOREGROUND, &colour);
        paint({0, 0, 200, 150});
        m_thread = std::jthread([this](const std::stop_token& stop) { run(stop); });
    }

    xcb_window_t window() const { return m_window; }

private:
    void run(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            auto* event = xcb_poll_for_event(m_painter.connection());
            if (event != nullptr && (event->response_type & 0x7F) == XCB_EXPOSE) {
                const auto& e = *reinterpret_cast<const xcb_expose_event_t*>(event);
                std::this_thread::sleep_for(std::chrono::milliseconds(15));
                paint({static_cast<std::int16_t>(e.x), static_cast<std::int16_t>(e.y), e.width,
                       e.height});
            }
            std::free(event);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    void paint(const xcb_rectangle_t& area) {
        xcb_poly_fill_rectangle(m_painter.connection(), m_window, m_gc, 1, &area);
        m_painter.sync();
    }

    Painter m_painter;
    xcb_window_t m_window = XCB_NONE;
    xcb_gcontext_t m_gc = XCB_NONE;
    std::jthread m_thread;
};

TEST_F(X11WindowStreamsTest, firstPictureWaitsForAProgramThatPaintsSlowly) {
    const SlowProgram program(server, 0x00C080);
    painter.addWindow(50, 40, 150, 100, 0xFF0000);
    const WindowWatch watched(server, program.window(), 200, 150);
    ASSERT_TRUE(watched.shows(199, 149, 0x00C080));
    EXPECT_EQ(colourAt(*watched.samples()[0].image, 0, 0), 0x00C080U);
    EXPECT_EQ(colourAt(*watched.samples()[0].image, 99, 59), 0x00C080U);
}

TEST_F(X11WindowStreamsTest, windowThatIsCoveredMeanwhileStaysWholeAndGoesOn) {
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    painter.addWindow(0, 0, 640, 480, 0xFF0000);
    paint(window, 10, 20, 30, 40, 0x00FF00);
    ASSERT_TRUE(watched.shows(10, 20, 0x00FF00));
    EXPECT_EQ(colourAt(*watched.last(), 39, 59), 0x00FF00U);
    EXPECT_EQ(colourAt(*watched.last(), 40, 60), 0x3070B0U);
}

TEST_F(X11WindowStreamsTest, windowThatIsMovedPartlyOffTheScreenStaysWhole) {
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    move(window, -150, 400);
    paint(window, 0, 100, 20, 20, 0xFFFF00);
    ASSERT_TRUE(watched.shows(0, 119, 0xFFFF00));
    EXPECT_EQ(colourAt(*watched.last(), 0, 0), 0x3070B0U);
}

TEST_F(X11WindowStreamsTest, onlyItsOwnChangesCount) {
    const xcb_window_t other = painter.addWindow(320, 80, 200, 150, 0xFF0000);
    const WindowWatch watched(server, window, 200, 150);
    const WindowWatch watchedOther(server, other, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    ASSERT_TRUE(watchedOther.shows(0, 0, 0xFF0000));
    paint(other, 0, 0, 10, 10, 0x00FFFF);
    ASSERT_TRUE(watchedOther.shows(0, 0, 0x00FFFF));
    EXPECT_EQ(watched.count(), 1U);
    EXPECT_EQ(watchedOther.count(), 2U);
}

TEST_F(X11WindowStreamsTest, windowThatShrinksIsContinuedByItsEdges) {
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    resize(window, 120, 90);
    paint(window, 119, 0, 1, 90, 0x00AA00);
    paint(window, 0, 89, 120, 1, 0xAA0000);
    ASSERT_TRUE(watched.shows(199, 149, 0xAA0000));
    ASSERT_TRUE(watched.shows(199, 10, 0x00AA00));
    EXPECT_EQ(colourAt(*watched.last(), 118, 10), 0x3070B0U);
    EXPECT_EQ(colourAt(*watched.last(), 60, 149), 0xAA0000U);
    EXPECT_EQ(watched.last()->width(), 200);
}

TEST_F(X11WindowStreamsTest, windowThatGrowsIsCutOff) {
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    resize(window, 400, 300);
    paint(window, 190, 140, 100, 100, 0x123456);
    ASSERT_TRUE(watched.shows(199, 149, 0x123456));
    EXPECT_EQ(colourAt(*watched.last(), 189, 149), 0x3070B0U);
    EXPECT_EQ(watched.last()->height(), 150);
    EXPECT_FALSE(watched.stream().failure());
}

TEST_F(X11WindowStreamsTest, oddWindowFillsTheEncodersEvenPicture) {
    resize(window, 199, 149);
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(199, 149, 0x3070B0));
}

TEST_F(X11WindowStreamsTest, windowThatIsHiddenKeepsItsLastPictureAndGoesOnWhenShown) {
    const WindowWatch watched(server, window, 200, 150);
    paint(window, 0, 0, 50, 50, 0x00FF00);
    ASSERT_TRUE(watched.shows(0, 0, 0x00FF00));
    const auto count = watched.count();
    xcb_unmap_window(painter.connection(), window);
    painter.sync();
    test::runLoopFor(0.2);
    EXPECT_FALSE(watched.stream().failure());
    for (const auto& sample : watched.samples()) {
        EXPECT_NE(colourAt(*sample.image, 60, 60), 0x101010U);
    }
    EXPECT_EQ(watched.count(), count);
    xcb_map_window(painter.connection(), window);
    painter.sync();
    paint(window, 100, 100, 20, 20, 0xFF00FF);
    EXPECT_TRUE(watched.shows(100, 100, 0xFF00FF));
    EXPECT_TRUE(watched.shows(0, 0, 0x3070B0)) << "the new window's background";
}

TEST_F(X11WindowStreamsTest, windowThatIsHiddenWithItsParentGoesOnWithIt) {
    const xcb_window_t parent = painter.addWindow(300, 200, 240, 180, 0x777777);
    xcb_reparent_window(painter.connection(), window, parent, 5, 20);
    painter.sync();
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    xcb_unmap_window(painter.connection(), parent);
    painter.sync();
    test::runLoopFor(0.1);
    xcb_map_window(painter.connection(), parent);
    painter.sync();
    paint(window, 10, 10, 20, 20, 0xABCDEF);
    EXPECT_TRUE(watched.shows(10, 10, 0xABCDEF));
    EXPECT_EQ(colourAt(*watched.last(), 199, 149), 0x3070B0U) << "without its parent";
}

TEST_F(X11WindowStreamsTest, childrenAreInThePicture) {
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    const xcb_window_t child = painter.addWindow(0, 0, 40, 30, 0x00FFFF);
    xcb_reparent_window(painter.connection(), child, window, 60, 50);
    painter.sync();
    ASSERT_TRUE(watched.shows(60, 50, 0x00FFFF));
    paint(child, 5, 5, 5, 5, 0xFFFFFF);
    EXPECT_TRUE(watched.shows(65, 55, 0xFFFFFF));
}

TEST_F(X11WindowStreamsTest, borderIsLeftOut) {
    configure(window, XCB_CONFIG_WINDOW_BORDER_WIDTH, {7, 0});
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    paint(window, 0, 0, 1, 1, 0xFFFFFF);
    EXPECT_TRUE(watched.shows(0, 0, 0xFFFFFF));
    EXPECT_EQ(colourAt(*watched.last(), 199, 149), 0x3070B0U);
}

TEST_F(X11WindowStreamsTest, windowThatIsClosedEndsTheStream) {
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    EXPECT_FALSE(watched.stream().failure());
    xcb_destroy_window(painter.connection(), window);
    painter.sync();
    ASSERT_TRUE(test::waitFor([&] { return watched.stream().failure().has_value(); }));
    EXPECT_EQ(watched.stream().failure()->kind, CaptureError::Kind::sourceClosed);
    EXPECT_FALSE(watched.stream().failure()->description().empty());
    EXPECT_EQ(colourAt(*watched.last(), 100, 100), 0x3070B0U);
}

TEST_F(X11WindowStreamsTest, windowWithAlphaGivesPremultipliedPixels) {
    const xcb_window_t clear = painter.addAlphaWindow(300, 300, 64, 64, 0x40102030);
    const WindowWatch watched(server, clear, 64, 64);
    ASSERT_TRUE(watched.showsPixel(0, 0, 0x40102030));
    paint(clear, 0, 0, 8, 8, 0xFF804020);
    EXPECT_TRUE(watched.showsPixel(7, 7, 0xFF804020));
    paint(clear, 0, 0, 8, 8, 0);
    EXPECT_TRUE(watched.showsPixel(7, 7, 0));
    paint(clear, 0, 0, 8, 8, 0x20FF10FF);
    EXPECT_TRUE(watched.showsPixel(7, 7, 0x20201020)) << "no colour above its alpha";
    EXPECT_EQ(pixelAt(*watched.last(), 8, 8), 0x40102030U);
}

TEST_F(X11WindowStreamsTest, alphaIsToldBeforeTheStreamIsMade) {
    X11ScreenStreams streams(server.name());
    EXPECT_FALSE(streams.hasAlpha(ScreenFilter::window(window)));
    EXPECT_FALSE(streams.hasAlpha(ScreenFilter::display(1)));
    EXPECT_FALSE(streams.hasAlpha(ScreenFilter::window(4711)));
    const xcb_window_t clear = painter.addAlphaWindow(300, 300, 64, 64, 0x40102030);
    EXPECT_TRUE(streams.hasAlpha(ScreenFilter::window(clear)));
    shape({{0, 0, 200, 150}});
    EXPECT_FALSE(streams.hasAlpha(ScreenFilter::window(window))) << "a rectangle after all";
    shape({{0, 0, 200, 149}});
    EXPECT_TRUE(streams.hasAlpha(ScreenFilter::window(window)));
}

TEST_F(X11WindowStreamsTest, whatAShapedWindowDoesNotShowIsTransparent) {
    shape({{50, 0, 100, 150}, {0, 60, 200, 20}});
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.showsPixel(100, 0, 0xFF3070B0));
    EXPECT_EQ(pixelAt(*watched.last(), 49, 59), 0U);
    EXPECT_EQ(pixelAt(*watched.last(), 0, 60), 0xFF3070B0U);
    EXPECT_EQ(pixelAt(*watched.last(), 199, 79), 0xFF3070B0U);
    EXPECT_EQ(pixelAt(*watched.last(), 199, 80), 0U);
    EXPECT_EQ(pixelAt(*watched.last(), 50, 149), 0xFF3070B0U);
    paint(window, 0, 0, 200, 150, 0xA0B0C0);
    ASSERT_TRUE(watched.showsPixel(100, 0, 0xFFA0B0C0));
    EXPECT_EQ(pixelAt(*watched.last(), 10, 10), 0U);
}

TEST_F(X11WindowStreamsTest, shapeMayChange) {
    shape({{50, 0, 100, 150}});
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.showsPixel(0, 0, 0));
    shape({{0, 0, 30, 30}, {100, 100, 100, 50}});
    ASSERT_TRUE(watched.showsPixel(60, 60, 0));
    EXPECT_EQ(pixelAt(*watched.last(), 0, 0), 0xFF3070B0U);
    xcb_shape_mask(painter.connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window, 0, 0,
                   XCB_PIXMAP_NONE);
    painter.sync();
    ASSERT_TRUE(watched.showsPixel(60, 60, 0xFF3070B0)) << "a rectangle from now on";
}

TEST_F(X11WindowStreamsTest, neverFasterThanSixtyASecondAndOnTheHostClock) {
    const MediaTime before = SystemClock().hostTime();
    const WindowWatch watched(server, window, 200, 150);
    std::uint32_t colour = 0;
    ASSERT_TRUE(test::waitFor([&] {
        paint(window, 0, 0, 64, 64, ++colour);
        return watched.count() >= 20;
    }));
    const auto samples = watched.samples();
    EXPECT_GE(samples.front().presentationTime, before);
    EXPECT_LE(samples.back().presentationTime,
              SystemClock().hostTime() + MediaTime::fromNanoseconds(1'000'000));
    for (std::size_t i = 1; i < samples.size(); ++i) {
        const MediaTime gap = samples[i].presentationTime - samples[i - 1].presentationTime;
        EXPECT_GE(gap, (MediaTime{1, 60})) << i;
    }
}

TEST_F(X11WindowStreamsTest, hiddenWindowCostsNoTime) {
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    xcb_unmap_window(painter.connection(), window);
    painter.sync();
    const std::clock_t before = std::clock();
    timespec pause{0, 300'000'000};
    nanosleep(&pause, nullptr);
    const double used = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    EXPECT_LT(used, 0.1) << "of 0.3 s";
}

TEST_F(X11WindowStreamsTest, focusStaysWhereItIs) {
    xcb_set_input_focus(painter.connection(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    painter.sync();
    const WindowWatch watched(server, window, 200, 150);
    ASSERT_TRUE(watched.shows(0, 0, 0x3070B0));
    auto* focus = xcb_get_input_focus_reply(painter.connection(),
                                            xcb_get_input_focus(painter.connection()), nullptr);
    EXPECT_EQ(focus->focus, window);
    std::free(focus);
}

CaptureError::Kind errorOf(const std::string& server, xcb_window_t window) {
    const auto made = X11ScreenStreams(server).makeStream(ScreenFilter::window(window),
                                                          {.width = 64, .height = 64});
    EXPECT_FALSE(made);
    EXPECT_FALSE(made.error().description().empty());
    return made.error().kind;
}

TEST_F(X11WindowStreamsTest, windowThatIsNotThereOrNotShownIsTold) {
    EXPECT_EQ(errorOf(server.name(), 0x7777777), CaptureError::Kind::sourceGone);
    xcb_unmap_window(painter.connection(), window);
    painter.sync();
    EXPECT_EQ(errorOf(server.name(), window), CaptureError::Kind::sourceGone);
}

TEST(X11WindowStreamsErrors, missingExtensions) {
    for (const char* extension : {"DAMAGE", "MIT-SHM", "Composite"}) {
        const XTestServer bare("320x240x24", {"-extension", extension});
        Painter client(bare);
        EXPECT_EQ(errorOf(bare.name(), client.addWindow(0, 0, 64, 64, 1)),
                  CaptureError::Kind::missingExtension)
            << extension;
    }
}

} // namespace
} // namespace tavi
