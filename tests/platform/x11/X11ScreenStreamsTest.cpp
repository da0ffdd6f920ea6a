#include "platform/x11/X11ScreenStreams.h"

#include "base/Clock.h"
#include "platform/x11/WatchedStream.h"
#include "platform/x11/X11ShareableContent.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

namespace tavi {
namespace {

using test::colourAt;
using test::Painter;
using test::XTestServer;

std::vector<Display> displaysOf(const XTestServer& server) {
    return X11ShareableContent(server.name()).content().value().displays;
}

class Watched : public test::WatchedStream {
public:
    Watched(const XTestServer& server, const Display& display, int width = 0, int height = 0)
        : WatchedStream(server, ScreenFilter::display(display.id),
                        width > 0 ? width : display.width, height > 0 ? height : display.height) {}
};

class X11ScreenStreamsTest : public testing::Test {
protected:
    X11ScreenStreamsTest() { painter.fill(0, 0, 640, 480, 0x204060); }

    XTestServer server;
    Painter painter{server};
    Display display = displaysOf(server).at(0);
};

TEST_F(X11ScreenStreamsTest, firstPictureComesAtOnceThoughNothingMoves) {
    const Watched watched(server, display);
    EXPECT_TRUE(watched.shows(320, 240, 0x204060));
    EXPECT_EQ(watched.last()->width(), 640);
    EXPECT_EQ(watched.last()->height(), 480);
}

TEST_F(X11ScreenStreamsTest, picturesAreExact) {
    std::mt19937 random(1);
    std::vector<std::uint32_t> pixels(100 * 80);
    for (auto& pixel : pixels) {
        pixel = random() & 0xFFFFFF;
    }
    painter.put(33, 21, 100, 80, pixels);
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(33, 21, pixels[0]));
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 100; ++x) {
            ASSERT_EQ(colourAt(*watched.last(), 33 + x, 21 + y),
                      pixels[static_cast<std::size_t>(y * 100 + x)]);
        }
    }
}

TEST_F(X11ScreenStreamsTest, picturesComeOnlyWhenSomethingChanged) {
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    test::runLoopFor(0.3);
    EXPECT_EQ(watched.count(), 1U);
    painter.fill(10, 10, 5, 5, 0xFF0000);
    ASSERT_TRUE(watched.shows(12, 12, 0xFF0000));
    test::runLoopFor(0.1);
    EXPECT_EQ(watched.count(), 2U);
}

TEST_F(X11ScreenStreamsTest, aScreenAtRestComesAgainUntilItCouldBeUsed) {
    Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    watched.refuse(true);
    painter.fill(10, 10, 5, 5, 0xFF0000);
    ASSERT_TRUE(test::waitFor([&] { return watched.count() >= 4; }));
    watched.refuse(false);
    const std::size_t refused = watched.count();
    ASSERT_TRUE(test::waitFor([&] { return watched.count() > refused; }));
    test::runLoopFor(0.2);
    const auto samples = watched.samples();
    EXPECT_LE(samples.size(), refused + 2); // One may have been on its way.
    for (std::size_t i = 1; i < samples.size(); ++i) {
        EXPECT_EQ(colourAt(*samples[i].image, 12, 12), 0xFF0000U);
        EXPECT_GT(samples[i].presentationTime, samples[i - 1].presentationTime);
    }
}

TEST_F(X11ScreenStreamsTest, smallChangesAddUpToTheWholePicture) {
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    for (int i = 0; i < 40; ++i) {
        painter.fill(i * 16, (i * 7) % 470, 3, 3, static_cast<std::uint32_t>(0x10000 + i));
    }
    ASSERT_TRUE(watched.shows(39 * 16, (39 * 7) % 470, 0x10000 + 39));
    const auto picture = watched.last();
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(colourAt(*picture, i * 16 + 2, (i * 7) % 470 + 2),
                  0x010000U + static_cast<unsigned>(i));
    }
    EXPECT_EQ(colourAt(*picture, 8, 479), 0x204060U);
}

TEST_F(X11ScreenStreamsTest, picturesInHandStayAsTheyWere) {
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(100, 100, 0x204060));
    const auto before = watched.last();
    for (std::uint32_t colour = 1; colour < 8; ++colour) {
        painter.fill(0, 0, 640, 480, colour);
        ASSERT_TRUE(watched.shows(100, 100, colour));
    }
    EXPECT_EQ(colourAt(*before, 100, 100), 0x204060U);
}

TEST_F(X11ScreenStreamsTest, neverFasterThanSixtyASecond) {
    const Watched watched(server, display);
    std::uint32_t colour = 0;
    ASSERT_TRUE(test::waitFor([&] {
        for (int i = 0; i < 10; ++i) {
            painter.fill(0, 0, 64, 64, ++colour);
        }
        return watched.count() >= 20;
    }));
    const auto samples = watched.samples();
    for (std::size_t i = 1; i < samples.size(); ++i) {
        const MediaTime gap = samples[i].presentationTime - samples[i - 1].presentationTime;
        EXPECT_GE(gap, (MediaTime{1, 60})) << i;
    }
}

/// How often this process went to sleep of its own accord, all threads together.
long sleepsOfThisProcess() {
    long sleeps = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream status(task.path() / "status");
        const std::string name = "voluntary_ctxt_switches:";
        for (std::string line; std::getline(status, line);) {
            sleeps += line.rfind(name, 0) == 0 ? std::stol(line.substr(name.size())) : 0;
        }
    }
    return sleeps;
}

TEST_F(X11ScreenStreamsTest, sleepsWhileNothingMoves) {
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    // A busy machine is done with the first picture somewhat later.
    EXPECT_TRUE(test::waitFor([] {
        const long before = sleepsOfThisProcess();
        std::this_thread::sleep_for(std::chrono::seconds(1));
        return sleepsOfThisProcess() - before <= 2; // this thread's own
    }));
}

TEST_F(X11ScreenStreamsTest, timesAreOfTheMomentThePictureWasTaken) {
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    const SystemClock clock;
    for (std::uint32_t colour = 1; colour < 20; ++colour) {
        const MediaTime before = clock.hostTime();
        painter.fill(0, 0, 64, 64, colour);
        ASSERT_TRUE(watched.shows(0, 0, colour));
        const MediaTime after = clock.hostTime();
        const MediaTime taken = watched.samples().back().presentationTime;
        EXPECT_GE(taken, before);
        EXPECT_LE(taken, after + MediaTime::fromNanoseconds(1'000'000));
    }
}

TEST_F(X11ScreenStreamsTest, changesFarApartAndFullOnesMixToExactPictures) {
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    std::mt19937 random(3); // fixed seed: the same changes at every run
    std::vector<PixelBufferPtr> held;
    for (std::uint32_t step = 1; step < 60; ++step) {
        const int left = static_cast<int>(random() % 100);
        const int right = static_cast<int>(500 + random() % 100);
        painter.fill(left, left, 20, 9, step);
        painter.fill(right, 400, 30, 60, step * 0x100);
        if (step % 7 == 0) {
            painter.fill(0, 120, 640, 200, step * 0x10000);
        }
        painter.fill(639, 479, 1, 1, step);
        ASSERT_TRUE(watched.shows(639, 479, step));
        const auto truth = painter.get();
        const auto picture = watched.last();
        for (int i = 0; i < 640 * 480; ++i) {
            ASSERT_EQ(colourAt(*picture, i % 640, i / 640),
                      truth[static_cast<std::size_t>(i)] & 0xFFFFFFU)
                << "step " << step << " at " << i % 640 << "," << i / 640;
        }
        held.push_back(picture); // so that frames are used in turns
        if (held.size() > random() % 4) {
            held.erase(held.begin());
        }
    }
}

TEST_F(X11ScreenStreamsTest, timesAreOfTheHostClock) {
    const MediaTime before = SystemClock().hostTime();
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    EXPECT_GE(watched.samples()[0].presentationTime, before);
    EXPECT_LE(watched.samples()[0].presentationTime, SystemClock().hostTime());
}

TEST_F(X11ScreenStreamsTest, cursorIsNotInThePicture) {
    painter.addWindow(100, 100, 200, 200, 0x00FF00, 68);
    ASSERT_TRUE(server.run("xdotool mousemove 200 200"));
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(200, 200, 0x00FF00));
    ASSERT_TRUE(server.run("xdotool mousemove 150 150"));
    painter.fill(0, 0, 4, 4, 0xFFFFFF);
    ASSERT_TRUE(watched.shows(0, 0, 0xFFFFFF));
    const auto picture = watched.last();
    for (int y = 100; y < 300; ++y) {
        for (int x = 100; x < 300; ++x) {
            ASSERT_EQ(colourAt(*picture, x, y), 0x00FF00U) << x << "," << y;
        }
    }
}

TEST_F(X11ScreenStreamsTest, pointerThatMovesOverAPlainScreenCostsNoPictures) {
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    ASSERT_TRUE(server.run("xdotool mousemove 100 100 mousemove 300 200 mousemove 20 400"));
    test::runLoopFor(0.1);
    EXPECT_EQ(watched.count(), 1U);
}

TEST_F(X11ScreenStreamsTest, oneMonitorOfTwoIsCutOutAndOnlyItsChangesCount) {
    ASSERT_TRUE(server.run("xrandr --setmonitor LEFT 320/85x480/127+0+0 screen"));
    ASSERT_TRUE(server.run("xrandr --setmonitor RIGHT 320/85x480/127+320+0 none"));
    const auto displays = displaysOf(server);
    ASSERT_EQ(displays.size(), 2U);
    const Watched watched(server, displays[1]);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    EXPECT_EQ(watched.last()->width(), 320);
    painter.fill(0, 0, 320, 480, 0xFF0000);
    test::runLoopFor(0.1);
    EXPECT_EQ(watched.count(), 1U);
    painter.fill(310, 5, 20, 20, 0x0000FF);
    ASSERT_TRUE(watched.shows(9, 5, 0x0000FF));
    EXPECT_EQ(colourAt(*watched.last(), 10, 5), 0x204060U);
}

TEST_F(X11ScreenStreamsTest, largerPictureRepeatsTheLastColumnAndRow) {
    const Watched watched(server, display, 642, 482);
    ASSERT_TRUE(watched.shows(641, 481, 0x204060));
    painter.fill(639, 479, 1, 1, 0xABCDEF);
    ASSERT_TRUE(watched.shows(641, 481, 0xABCDEF));
    EXPECT_EQ(colourAt(*watched.last(), 641, 0), 0x204060U);
}

TEST_F(X11ScreenStreamsTest, smallerScreenLeavesTheRestBlack) {
    const Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    ASSERT_TRUE(server.run("xrandr --newmode small 10 320 330 340 350 240 245 250 255"));
    ASSERT_TRUE(server.run("xrandr --addmode screen small"));
    ASSERT_TRUE(server.run("xrandr --output screen --mode small"));
    ASSERT_TRUE(watched.shows(639, 479, 0));
    painter.fill(300, 200, 5, 5, 0x00FFFF);
    EXPECT_TRUE(watched.shows(302, 202, 0x00FFFF));
    EXPECT_EQ(watched.last()->width(), 640);
    EXPECT_FALSE(const_cast<Watched&>(watched).stream().failure());
}

TEST_F(X11ScreenStreamsTest, nothingIsSentAfterTheStop) {
    Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    ASSERT_TRUE(watched.stream().stopCapture());
    const auto count = watched.count();
    painter.fill(0, 0, 640, 480, 0xFF0000);
    test::runLoopFor(0.1);
    EXPECT_EQ(watched.count(), count);
}

TEST_F(X11ScreenStreamsTest, serverThatDiesIsAFailure) {
    Watched watched(server, display);
    ASSERT_TRUE(watched.shows(0, 0, 0x204060));
    EXPECT_FALSE(watched.stream().failure());
    server.die();
    EXPECT_TRUE(test::waitFor([&] { return watched.stream().failure().has_value(); }));
    EXPECT_EQ(watched.stream().failure()->kind, CaptureError::Kind::connectionLost);
}

CaptureError::Kind errorOf(const std::string& server, std::uint32_t displayId) {
    ScreenStreamConfiguration configuration;
    configuration.width = configuration.height = 64;
    const auto made =
        X11ScreenStreams(server).makeStream(ScreenFilter::display(displayId), configuration);
    EXPECT_FALSE(made);
    EXPECT_FALSE(made.error().description().empty());
    return made.error().kind;
}

TEST(X11ScreenStreamsErrors, noServer) {
    EXPECT_EQ(errorOf(":9871", 1), CaptureError::Kind::noWindowSystem);
}

TEST(X11ScreenStreamsErrors, unknownDisplay) {
    const XTestServer server;
    EXPECT_EQ(errorOf(server.name(), 999'999), CaptureError::Kind::sourceGone);
}

TEST(X11ScreenStreamsErrors, missingExtensions) {
    for (const char* extension : {"DAMAGE", "MIT-SHM", "XFIXES"}) {
        const XTestServer server("64x64x24", {"-extension", extension});
        const auto monitors = X11ShareableContent(server.name()).content();
        ASSERT_TRUE(monitors);
        EXPECT_EQ(errorOf(server.name(), monitors->displays[0].id),
                  CaptureError::Kind::missingExtension)
            << extension;
    }
}

TEST(X11ScreenStreamsErrors, sixteenBitColour) {
    const XTestServer server("64x64x16");
    EXPECT_EQ(errorOf(server.name(), displaysOf(server).at(0).id),
              CaptureError::Kind::unsupportedFormat);
}

} // namespace
} // namespace tavi
