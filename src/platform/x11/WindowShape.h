#pragma once

#include "base/PixelBuffer.h"
#include "platform/x11/XConnection.h"

#include <vector>

namespace tavi {

/// The outline of a window that isn't a rectangle (X Shape extension).
///
/// Lives no longer than its connection. Threads: one at a time.
class WindowShape {
public:
    /// The window's outline of now; changes come as events on this connection. A server without
    /// the extension has rectangles only.
    WindowShape(const XConnection& x, xcb_window_t window);

    /// True when an event tells that the outline has changed, and it was fetched anew.
    bool note(const xcb_generic_event_t& event);

    /// Whether parts of the window's rectangle are not shown.
    bool isShaped() const { return m_isShaped; }

    /// Clears what of a picture of the window, `area` of its pixels from the top left, is not
    /// shown.
    void cut(PixelBuffer& picture, const PixelRect& area) const;

private:
    void fetch();

    xcb_connection_t* m_connection;
    xcb_window_t m_window;
    int m_event = -1; ///< The number of the event; -1 without the extension.
    bool m_isShaped = false;
    std::vector<PixelRect> m_bands; ///< From the top, those of the same rows from the left.
};

} // namespace tavi
