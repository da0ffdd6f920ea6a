#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/x11/ManagedDesktop.h"
#include "platform/x11/RecordedVideo.h"
#include "platform/x11/RecorderProcess.h"

#include <gmock/gmock.h>
#include <xcb/shape.h>

#include <array>
#include <csignal>

namespace tavi {
namespace {

using test::Managed;
using test::ManagedDesktop;
using test::Painter;
using test::RecorderProcess;

/// 0xAARRGGBB, premultiplied.
constexpr std::uint32_t kFrame = 0xFF3070B0;
constexpr std::uint32_t kGlass = 0x80402010;

constexpr int kWidth = 480; ///< Of the window.
constexpr int kHeight = 270;

/// How a film is made here: the window fills it, in front of plain white.
constexpr const char* kPlainFilm =
    " --set appearanceSettings.backgroundStyle=solidWhite --set appearanceSettings.padding=0 "
    "--set appearanceSettings.cornerRadius=0 --set outputSettings.resolution=1920x1080 "
    "--set outputSettings.fps=30 --set cursorSettings.showCursor=false ";
constexpr double kScale = 1920.0 / kWidth;

/// Shows a window with what a program tells the window manager; waits until it is listed.
void show(const ManagedDesktop& desktop, Painter& painter, xcb_window_t window,
          const std::string& title) {
    xcb_connection_t* c = painter.connection();
    const std::string names("glass\0Glass", 12);
    const std::array<std::uint32_t, 18> sizes{1 | 2, 0, 0, kWidth, kHeight}; // where and how large
    const auto set = [&](xcb_atom_t property, xcb_atom_t type, std::uint8_t bits, std::size_t count,
                         const void* value) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, property, type, bits,
                            static_cast<std::uint32_t>(count), value);
    };
    set(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, title.size(), title.data());
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, names.size(), names.data());
    set(XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32, sizes.size(), sizes.data());
    EXPECT_TRUE(test::waitFor([&] {
        xcb_map_window(c, window); // A window manager that has just begun may lose it.
        painter.sync();
        return desktop.idOf(title) == window;
    }));
}

/// Records the window until its film has two pictures; the take's folder.
std::filesystem::path record(RecorderProcess& recorder, Painter& painter, xcb_window_t window) {
    EXPECT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    EXPECT_TRUE(test::waitFor([&] {
        painter.paint(window, 200, 60, 4, 4, kFrame); // A busy machine drops pictures.
        return test::readAll(recorder.take() / "video.mov").size() >= 2;
    }));
    recorder.signal(SIGINT);
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors();
    return recorder.take();
}

/// Fails the test unless the picture shows the colour 0xRRGGBB at a place of the window.
void expectColour(const PixelBuffer& picture, int x, int y, std::uint32_t colour) {
    constexpr int kNoise = 6;
    const std::uint8_t* pixel =
        picture.row(static_cast<int>(y * kScale)) + static_cast<std::ptrdiff_t>(x * kScale) * 4;
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(pixel[i], static_cast<int>(colour >> (8 * i)) & 0xFF, kNoise)
            << x << "," << y << " channel " << i;
    }
}

std::string probe(const std::filesystem::path& film, const std::string& entries,
                  const std::filesystem::path& out) {
    const std::string command = "ffprobe -v error -show_entries " + entries + " -of csv=p=0 '" +
                                film.string() + "' >'" + out.string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return test::readFile(out);
}

TEST(RecordAlpha, filmShowsTheBackgroundThroughTheWindow) {
    const ManagedDesktop desktop;
    Painter painter(desktop.server);
    const xcb_window_t window =
        painter.addAlphaWindow(100, 100, kWidth, kHeight, kFrame, Managed::byWindowManagers);
    show(desktop, painter, window, "glass");
    painter.paint(window, 40, 40, 200, 190, kGlass);
    painter.paint(window, 280, 40, 160, 190, 0);

    RecorderProcess recorder(desktop.server.name(), {"--window", std::to_string(window)});
    const auto take = record(recorder, painter, window);
    EXPECT_EQ(probe(take / "video.mov", "stream=codec_name", desktop.folder / "probed"),
              "hevc\nhevc\n");
    EXPECT_EQ(probe(take / "video.mov", "stream_disposition=default", desktop.folder / "probed"),
              "1\n0\n");

    const auto still = desktop.folder / "still.png";
    const auto film = desktop.folder / "film.mp4";
    const auto out = desktop.folder / "out";
    ASSERT_EQ(desktop.run("render '" + take.string() + "' --at 0.05 -o '" + still.string() + "'" +
                              kPlainFilm,
                          out),
              0)
        << test::readFile(desktop.folder / "errors");
    ASSERT_EQ(
        desktop.run("export '" + take.string() + "' -o '" + film.string() + "'" + kPlainFilm, out),
        0)
        << test::readFile(desktop.folder / "errors");
    const auto frames = test::readAll(film);
    ASSERT_FALSE(frames.empty());
    for (const auto& picture : {FfmpegImageFiles().readPng(still).value(), frames.back().image}) {
        expectColour(*picture, 20, 135, 0x3070B0);
        expectColour(*picture, 140, 135, 0xBF9F8F); // over white: 255 - 128 of it
        expectColour(*picture, 360, 135, 0xFFFFFF);
    }
}

TEST(RecordAlpha, filmOfAShapedWindowShowsTheBackgroundAroundIt) {
    const ManagedDesktop desktop;
    Painter painter(desktop.server);
    const xcb_window_t window =
        painter.addWindow(100, 100, kWidth, kHeight, 0x3070B0, -1, Managed::byWindowManagers);
    const std::array shape{xcb_rectangle_t{60, 0, 360, 270}, xcb_rectangle_t{0, 100, 480, 70}};
    xcb_shape_rectangles(painter.connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, window, 0, 0, shape.size(), shape.data());
    show(desktop, painter, window, "shaped");

    RecorderProcess recorder(desktop.server.name(), {"--window", std::to_string(window)});
    const auto take = record(recorder, painter, window);
    const auto still = desktop.folder / "still.png";
    ASSERT_EQ(desktop.run("render '" + take.string() + "' --at 0 -o '" + still.string() + "'" +
                              kPlainFilm,
                          desktop.folder / "out"),
              0)
        << test::readFile(desktop.folder / "errors");
    const auto picture = FfmpegImageFiles().readPng(still).value();
    expectColour(*picture, 30, 50, 0xFFFFFF);
    expectColour(*picture, 450, 230, 0xFFFFFF);
    expectColour(*picture, 30, 135, 0x3070B0);
    expectColour(*picture, 240, 30, 0x3070B0);
}

TEST(RecordAlpha, opaqueWindowHasOneTrack) {
    ManagedDesktop desktop;
    Painter painter(desktop.server);
    const std::uint32_t id = desktop.startTerminal();
    RecorderProcess recorder(desktop.server.name(), {"--window", std::to_string(id)});
    ASSERT_TRUE(recorder.waitForFirstFrame()) << recorder.errors();
    recorder.signal(SIGINT);
    ASSERT_EQ(recorder.wait(), 0) << recorder.errors();
    EXPECT_EQ(probe(recorder.take() / "video.mov", "stream=codec_name", desktop.folder / "probed"),
              "hevc\n");
}

} // namespace
} // namespace tavi
