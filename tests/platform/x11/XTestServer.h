#pragma once

#include "support/TemporaryFolder.h"

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavi::test {

/// A private X server without screen, ended with the object.
class XTestServer {
public:
    explicit XTestServer(const std::string& screen = "640x480x24",
                         const std::vector<std::string>& extraArguments = {});
    ~XTestServer();

    /// One with sixteen outputs, DUMMY0 to DUMMY15, as of real screens: plugged in, and the first
    /// one switched on.
    static XTestServer withOutputs();

    /// One whose output can be turned; it is a window of `parent`.
    static XTestServer withTurningOutput(const XTestServer& parent);

    XTestServer(const XTestServer&) = delete;
    XTestServer& operator=(const XTestServer&) = delete;

    const std::string& name() const { return m_name; } ///< ":7"

    /// Runs a shell command on this display; true when it succeeded.
    bool run(const std::string& command) const;

    void die();

private:
    /// Runs a server by its command, to which it adds how it tells its name.
    XTestServer(std::vector<std::string> command, std::unique_ptr<TemporaryFolder> files,
                const std::string& parent = {});

    std::unique_ptr<TemporaryFolder> m_files; ///< What it reads and writes; null without.
    pid_t m_pid = 0;
    std::string m_name;
};

/// Who looks after a window.
enum class Managed {
    byNobody,         ///< It is shown at once, where it is.
    byWindowManagers, ///< It is not shown until it is mapped.
};

/// A client that paints.
class Painter {
public:
    explicit Painter(const XTestServer& server);
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    xcb_connection_t* connection() const { return m_connection; }
    xcb_window_t root() const { return m_screen->root; }

    /// Fills a rectangle of the root window with 0xRRGGBB and waits until it is there.
    void fill(int x, int y, int width, int height, std::uint32_t colour);

    /// A window with one colour and, when
    /// `glyph` isn't negative, that cursor of the font "cursor".
    xcb_window_t addWindow(int x, int y, int width, int height, std::uint32_t colour,
                           int glyph = -1, Managed managed = Managed::byNobody);

    /// The same with an alpha channel; `pixel` is 0xAARRGGBB, premultiplied.
    xcb_window_t addAlphaWindow(int x, int y, int width, int height, std::uint32_t pixel,
                                Managed managed = Managed::byNobody);

    /// Fills a rectangle of a window with a pixel and waits until it is there.
    void paint(xcb_window_t window, int x, int y, int width, int height, std::uint32_t pixel);

    /// Puts rows of BGRX pixels at (x, y) of the root window.
    void put(int x, int y, int width, int height, const std::vector<std::uint32_t>& pixels);

    /// All pixels of the root window, rows from the top.
    std::vector<std::uint32_t> get() const;

    /// Waits until the server did everything asked so far.
    void sync();

private:
    void show(xcb_window_t window, Managed managed);

    xcb_connection_t* m_connection;
    const xcb_screen_t* m_screen;
    xcb_gcontext_t m_gc;
};

/// The one Qt application of the process.
void ensureQtApplication();

/// Runs the Qt loop until `condition` holds; false when it doesn't within a minute.
bool waitFor(const std::function<bool()>& condition);

/// Runs the Qt loop for a while, and at least until all that waits for it is done.
void runLoopFor(double seconds);

} // namespace tavi::test
