#include "platform/x11/XTestServer.h"

#include "support/Eventually.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tavi::test {

namespace {

/// A screen card that isn't there.
constexpr const char* kDummyCard = R"(
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoAddGPU" "false"
  Option "DontVTSwitch" "true"
EndSection
Section "Device"
  Identifier "card"
  Driver "dummy"
  VideoRam 65536
EndSection
Section "Monitor"
  Identifier "monitor"
  HorizSync 5-1000
  VertRefresh 5-200
EndSection
Section "Screen"
  Identifier "screen"
  Device "card"
  Monitor "monitor"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Virtual 4096 2160
    Modes "1024x768"
  EndSubSection
EndSection
)";

std::vector<std::string> withoutScreen(const std::string& screen,
                                       const std::vector<std::string>& extraArguments) {
    std::vector<std::string> command{"Xvfb", "-screen", "0", screen};
    command.insert(command.end(), extraArguments.begin(), extraArguments.end());
    return command;
}

/// Waits until the process is gone; one that doesn't hear is killed.
void end(pid_t pid) {
    kill(pid, SIGTERM);
    if (!eventually([pid] { return waitpid(pid, nullptr, WNOHANG) != 0; })) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
}

/// Removes what a server left that could not do so itself. The lock tells whose the number is:
/// once a server has given it back, another program's may have it.
void removeRemainsOf(pid_t server, const std::string& number) {
    const std::string lock = "/tmp/.X" + number + "-lock";
    pid_t owner = 0;
    if (std::ifstream(lock) >> owner && owner == server) {
        std::remove(("/tmp/.X11-unix/X" + number).c_str());
        std::remove(lock.c_str());
    }
}

} // namespace

XTestServer::XTestServer(const std::string& screen, const std::vector<std::string>& extraArguments)
    : XTestServer(withoutScreen(screen, extraArguments), nullptr) {}

XTestServer XTestServer::withOutputs() {
    auto files = std::make_unique<TemporaryFolder>();
    const std::string configuration = *files / "xorg.conf";
    const std::string log = *files / "xorg.log";
    std::ofstream(configuration) << kDummyCard;
    // Not the program in the path, which may need a console.
    return {{"/usr/lib/xorg/Xorg", "-config", configuration, "-logfile", log, "-novtswitch",
             "-sharevts", "-keeptty"},
            std::move(files)};
}

XTestServer XTestServer::withTurningOutput(const XTestServer& parent) {
    return {{"Xephyr", "-screen", "640x480"}, nullptr, parent.name()};
}

XTestServer::XTestServer(std::vector<std::string> command, std::unique_ptr<TemporaryFolder> files,
                         const std::string& parent)
    : m_files(std::move(files)) {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    command.insert(command.end(), {"-nolisten", "tcp", "-noreset", "-displayfd", "9"});
    std::vector<char*> raw;
    for (auto& argument : command) {
        raw.push_back(argument.data());
    }
    raw.push_back(nullptr);
    m_pid = fork();
    if (m_pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM); // which has it remove its socket and lock
        if (!parent.empty()) {
            setenv("DISPLAY", parent.c_str(), 1);
        }
        const int quiet = open("/dev/null", O_WRONLY);
        dup2(quiet, STDERR_FILENO);
        dup2(ends[1], 9); // as the command says
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
    EXPECT_GT(m_name.size(), 1U) << command[0] << " does not start";
}

XTestServer::~XTestServer() {
    die();
}

void XTestServer::die() {
    if (m_pid > 0) {
        end(m_pid);
        removeRemainsOf(m_pid, m_name.substr(1));
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
                                int glyph, Managed managed) {
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
    const std::uint32_t isFree = managed == Managed::byNobody ? 1 : 0;
    const std::array<std::uint32_t, 3> values{colour, isFree, cursor};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, root(),
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_CURSOR, values.data());
    show(window, managed);
    return window;
}

xcb_window_t Painter::addAlphaWindow(int x, int y, int width, int height, std::uint32_t pixel,
                                     Managed managed) {
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
    const std::uint32_t isFree = managed == Managed::byNobody ? 1 : 0;
    const std::array<std::uint32_t, 4> values{pixel, 0, isFree, colours};
    xcb_create_window(m_connection, kDepth, window, root(), static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_COLORMAP,
                      values.data());
    show(window, managed);
    return window;
}

void Painter::show(xcb_window_t window, Managed managed) {
    if (managed == Managed::byNobody) {
        xcb_map_window(m_connection, window);
    }
    sync();
}

void Painter::paint(xcb_window_t window, int x, int y, int width, int height, std::uint32_t pixel) {
    const xcb_gcontext_t gc = xcb_generate_id(m_connection);
    xcb_create_gc(m_connection, gc, window, XCB_GC_FOREGROUND, &pixel);
    const xcb_rectangle_t area{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                               static_cast<std::uint16_t>(width),
                               static_cast<std::uint16_t>(height)};
    xcb_poly_fill_rectangle(m_connection, window, gc, 1, &area);
    xcb_free_gc(m_connection, gc);
    sync();
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
    constexpr int kPatience = 60'000; // milliseconds
    ensureQtApplication();
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > kPatience) {
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
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        usleep(500);
    } while (static_cast<double>(timer.elapsed()) < seconds * 1000);
}

} // namespace tavi::test
