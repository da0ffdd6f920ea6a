#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/portal/SwayDesktop.h"
#include "platform/wayland/LayerSurfaces.h"
#include "platform/wayland/WaylandOutputs.h"
#include "support/PixelColour.h"

#include <QCoreApplication>
#include <QProcess>
#include <gtest/gtest.h>

#include <optional>

namespace tavi {
namespace {

using test::SwayDesktop;

constexpr std::uint32_t kRed = 0xC81E1E;
constexpr Rect kMonitor{0, 0, SwayDesktop::kWidth, SwayDesktop::kHeight};

/// A desktop of wlroots, seen through its own protocols.
class WaylandDesktop : public testing::Test {
protected:
    /// What is on the monitor now.
    PixelBufferPtr screen() {
        const auto file = m_folder / "screen.png";
        EXPECT_EQ(QProcess::execute("grim", {QString::fromStdString(file.string())}), 0);
        return FfmpegImageFiles().readPng(file).value_or(nullptr);
    }
    static bool shows(const PixelBufferPtr& picture, int x, int y, std::uint32_t colour) {
        return picture && test::colourDistance(*picture, x, y, colour) <= 4;
    }
    bool comesToShow(int x, int y, std::uint32_t colour) {
        return test::waitFor(
            [&] {
                QCoreApplication::processEvents();
                return shows(screen(), x, y, colour);
            },
            60);
    }

    /// A surface and what it was told of its size.
    std::unique_ptr<OverlaySurface> makeSurface(const Rect& frame) {
        auto surface = LayerSurfaces().makeSurface(frame, [this](Size points, int scale) {
            m_points = points;
            m_scale = scale;
        });
        EXPECT_TRUE(test::waitFor(
            [&] {
                QCoreApplication::processEvents();
                return m_points.has_value();
            },
            60));
        return surface;
    }

    static PixelBuffer red(int width, int height) {
        PixelBuffer picture(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const std::uint32_t pixel = 0xFF000000U | kRed;
                std::memcpy(picture.row(y) + 4 * x, &pixel, sizeof(pixel));
            }
        }
        return picture;
    }

    SwayDesktop m_desktop;
    test::TemporaryFolder m_folder;
    std::optional<Size> m_points;
    int m_scale = 0;
};

TEST_F(WaylandDesktop, tellsItsDisplaysByName) {
    const auto displays = waylandDisplays();
    ASSERT_EQ(displays.size(), 1U);
    EXPECT_EQ(displays[0].name, "HEADLESS-1");
    EXPECT_EQ(displays[0].frame, kMonitor);
    EXPECT_EQ(displays[0].place, (Rect{0, 0, SwayDesktop::kWidth, SwayDesktop::kHeight}));
    EXPECT_TRUE(displays[0].isMain);
    EXPECT_NE(displays[0].id, 0U);
    EXPECT_EQ(waylandDisplays(), displays) << "a display keeps its id";
    m_desktop.turnMonitor("90");
    EXPECT_TRUE(test::waitFor([] { return waylandDisplays()[0].width == SwayDesktop::kHeight; }))
        << "a turned display is as wide as it is shown";
    EXPECT_EQ(waylandDisplays()[0].id, displays[0].id);
}

TEST_F(WaylandDesktop, aSurfaceCoversItsDisplayAndGoes) {
    auto surface = makeSurface(kMonitor);
    ASSERT_NE(surface, nullptr);
    ASSERT_EQ(m_points, (Size{SwayDesktop::kWidth, SwayDesktop::kHeight}));
    EXPECT_EQ(m_scale, 1);
    surface->show(red(SwayDesktop::kWidth, SwayDesktop::kHeight));
    EXPECT_TRUE(comesToShow(1000, 600, kRed));
    surface->show(PixelBuffer(SwayDesktop::kWidth, SwayDesktop::kHeight)); // transparent
    EXPECT_TRUE(comesToShow(1000, 600, SwayDesktop::kColour));
    surface->show(red(SwayDesktop::kWidth, SwayDesktop::kHeight));
    EXPECT_TRUE(comesToShow(1000, 600, kRed));
    surface.reset();
    EXPECT_TRUE(shows(screen(), 1000, 600, SwayDesktop::kColour))
        << "it is gone when the call returns";
}

TEST_F(WaylandDesktop, aSurfaceForWhatIsSomewhereIsACardInTheMiddle) {
    const auto surface = makeSurface({0, 0, 333, 222});
    ASSERT_NE(surface, nullptr);
    constexpr int kSide = LayerSurfaces::kCardSide;
    ASSERT_EQ(m_points, (Size{kSide, kSide}));
    surface->show(red(kSide, kSide));
    EXPECT_TRUE(comesToShow(SwayDesktop::kWidth / 2, SwayDesktop::kHeight / 2, kRed));
    EXPECT_TRUE(comesToShow(1000, 600, SwayDesktop::kColour));
}

TEST(WaylandNowhere, listsNothingAndHasNoSurface) {
    const std::map<std::string, std::string> display{{"WAYLAND_DISPLAY", "nowhere-0"}};
    const test::Surroundings nowhere(display);
    EXPECT_TRUE(waylandDisplays().empty());
    EXPECT_EQ(LayerSurfaces().makeSurface(kMonitor, [](Size, int) {}), nullptr);
}

} // namespace
} // namespace tavi
