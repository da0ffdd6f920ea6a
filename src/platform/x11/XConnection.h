#pragma once

#include "base/Geometry.h"
#include "base/Result.h"
#include "capture/CaptureError.h"
#include "platform/x11/PixelRect.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace tavi {

/// A reply or event of the X server, freed with its owner.
struct FreeMemory {
    void operator()(void* p) const { std::free(p); }
};
template<typename T>
using XOwned = std::unique_ptr<T, FreeMemory>;

/// The events that have come: asks the socket once, so that it can be waited on afterwards.
template<typename Handle>
void forEachEvent(xcb_connection_t* connection, const Handle& handle) {
    for (XOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}; event;
         event.reset(xcb_poll_for_queued_event(connection))) {
        handle(*event);
    }
}

/// A rectangle as requests carry it.
inline xcb_rectangle_t wire(const PixelRect& r) {
    return {static_cast<std::int16_t>(r.x), static_cast<std::int16_t>(r.y),
            static_cast<std::uint16_t>(r.width), static_cast<std::uint16_t>(r.height)};
}

/// A connection to an X server and its default screen.
///
/// Threads: requests from any thread; events are read by one.
class XConnection {
public:
    /// Connects to `displayName`, to $DISPLAY when it is empty.
    static Result<XConnection, CaptureError> open(const std::string& displayName);

    xcb_connection_t* get() const { return m_connection.get(); }
    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    bool isBroken() const { return xcb_connection_has_error(get()) != 0; }

    /// Asks whether the server has an extension; `name` is the user's word for it.
    Result<const xcb_query_extension_reply_t*, CaptureError> require(xcb_extension_t& extension,
                                                                     const std::string& name) const;

    /// Rectangles of the server (top left origin, y downwards) in the global
    /// space (bottom left origin). Its zero is the bottom of the root window when the first of
    /// this process's connections with the server was made that are still there, so that it is
    /// the same for all of them and never changes under a caller, whatever becomes of the screens.
    Rect toGlobal(const PixelRect& rect) const;
    Point toGlobal(int x, int y) const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    explicit XConnection(xcb_connection_t* connection) : m_connection(connection) {}

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    const xcb_screen_t* m_screen = nullptr;
    std::shared_ptr<const int> m_globalZero; ///< On the root window; one for the server.
};

} // namespace tavi
