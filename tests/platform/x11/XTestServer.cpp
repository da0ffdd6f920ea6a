#include "platform/x11/XTestServer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi::test {

XTestServer::XTestServer(const std::string& screen,
                         const std::vector<std::string>& extraArguments) {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const std::string descriptor = "9";
    std::vector<std::string> arguments{"Xvfb", "-screen",  "0",          screen,    "-nolisten",
                                       "tcp",  "-noreset", "-displayfd", descriptor};
    arguments.insert(arguments.end(), extraArguments.begin(), extraArguments.end());
    std::vector<char*> raw;
    for (auto& argument : arguments) {
        raw.push_back(argument.data());
    }
    raw.push_back(nullptr);
    m_pid = fork();
    if (m_pid == 0) {
        const int quiet = open("/dev/null", O_WRONLY);
        dup2(quiet, STDERR_FILENO);
        dup2(ends[1], 9);
        execvp(raw[0], raw.data());
        _exit(127);
    }
    close(ends[1]);
    char c = 0;
    m_name = ":";
    while (read(ends[0], &c, 1) == 1 && c != '\n') {
        m_name += c;
    }
    close(ends[0]);
    EXPECT_GT(m_name.size(), 1U) << "Xvfb does not start";
}

XTestServer::~XTestServer() {
    die();
}

void XTestServer::die() {
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
        std::remove(("/tmp/.X11-unix/X" + m_name.substr(1)).c_str());
        std::remove(("/tmp/.X" + m_name.substr(1) + "-lock").c_str());
    }
    m_pid = 0;
}

bool XTestServer::run(const std::string& command) const {
    return std::system(("DISPLAY=" + m_name + " " + command + " >/dev/null").c_str()) == 0;
}

Painter::Painter(const XTestServer& server)
    : m_connection(xcb_connect(server.name().c_str(), nullptr)),
      m_screen(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data),
      m_gc(xcb_generate_id(m_connection)) {
    EXPECT_EQ(xcb_connection_has_error(m_connection), 0);
    const std::uint32_t includeInferiors = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
    xcb_create_gc(m_connection, m_gc, root(), XCB_GC_SUBWINDOW_MODE, &includeInferiors);
}

Painter::~Painter() {
    xcb_disconnect(m_connection);
}

void Painter::fill(int x, int y, int width, int height, std::uint32_t colour) {
    xcb_change_gc(m_connection, m_gc, XCB_GC_FOREGROUND, &colour);
    const xcb_rectangle_t area{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                               static_cast<std::uint16_t>(width),
                               static_cast<std::uint16_t>(height)};
    xcb_poly_fill_rectangle(m_connection, root(), m_gc, 1, &area);
    sync();
}

xcb_window_t Painter::addWindow(int x, int y, int width, int height, std::uint32_t colour,
                                int glyph) {
    xcb_cursor_t cursor = XCB_CURSOR_NONE;
    if (glyph >= 0) {
        const xcb_font_t font = xcb_generate_id(m_connection);
        xcb_open_font(m_connection, font, 6, "cursor");
        cursor = xcb_generate_id(m_connection);
        const auto shape = static_cast<std::uint16_t>(glyph);
        xcb_create_glyph_cursor(m_connection, cursor, font, font, shape,
                                static_cast<std::uint16_t>(shape + 1), 0, 0, 0, 65535, 65535,
                                65535);
    }
    const xcb_window_t window = xcb_generate_id(m_connection);
    const std::array<std::uint32_t, 3> values{colour, 1, cursor};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, root(),
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_CURSOR, values.data());
    xcb_map_window(m_connection, window);
    sync();
    return window;
}

xcb_window_t Painter::addAlphaWindow(int x, int y, int width, int height, std::uint32_t pixel) {
    constexpr std::uint8_t kDepth = 32;
    auto depth = xcb_screen_allowed_depths_iterator(m_screen);
    while (depth.rem > 0 && (depth.data->depth != kDepth || depth.data->visuals_len == 0)) {
        xcb_depth_next(&depth);
    }
    EXPECT_GT(depth.rem, 0) << "no visual with an alpha channel";
    const xcb_visualid_t visual = xcb_depth_visuals(depth.data)->visual_id;
    const xcb_colormap_t colours = xcb_generate_id(m_connection);
    xcb_create_colormap(m_connection, XCB_COLORMAP_ALLOC_NONE, colours, root(), visual);
    const xcb_window_t window = xcb_generate_id(m_connection);
    const std::array<std::uint32_t, 4> values{pixel, 0, 1, colours};
    xcb_create_window(m_connection, kDepth, window, root(), static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_COLORMAP,
                      values.data());
    xcb_map_window(m_connection, window);
    sync();
    return window;
}

void Painter::put(int x, int y, int width, int height, const std::vector<std::uint32_t>& pixels) {
    xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root(), m_gc,
                  static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height),
                  static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0,
                  m_screen->root_depth, static_cast<std::uint32_t>(pixels.size() * 4),
                  reinterpret_cast<const std::uint8_t*>(pixels.data()));
    sync();
}

std::vector<std::uint32_t> Painter::get() const {
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(m_connection,
                            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root(), 0, 0,
                                          m_screen->width_in_pixels, m_screen->height_in_pixels,
                                          ~0U),
                            nullptr),
        &std::free);
    const auto* pixels = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
    return {pixels, pixels + xcb_get_image_data_length(reply.get()) / 4};
}

void Painter::sync() {
    std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

void ensureQtApplication() {
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);
}

bool waitFor(const std::function<bool()>& condition) {
    ensureQtApplication();
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 10'000) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        usleep(500);
    }
    return true;
}

void runLoopFor(double seconds) {
    ensureQtApplication();
    QElapsedTimer timer;
    timer.start();
    while (static_cast<double>(timer.elapsed()) < seconds * 1000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        usleep(500);
    }
}

} // namespace tavi::test
