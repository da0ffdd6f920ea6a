#pragma once

#include "capture/Pointer.h"
#include "platform/x11/XConnection.h"

#include <memory>
#include <mutex>
#include <string>

namespace tavi {

/// Where the pointer is and how it looks, on a connection of its own.
///
/// Threads: any. After the server has gone, the last position and no image.
class X11Pointer final : public PointerLocation, public CursorImages {
public:
    /// `displayName` empty: $DISPLAY.
    static Result<std::unique_ptr<X11Pointer>, CaptureError>
    open(const std::string& displayName = {});

    Point query() const override;

    /// The arrow of the user's cursor theme; where the theme has none, what is
    /// on screen now.
    std::optional<SystemCursor> arrowCursor() override;
    std::optional<SystemCursor> currentSystemCursor() override;

private:
    explicit X11Pointer(XConnection x) : m_x(std::move(x)) {}

    XConnection m_x;
    mutable std::mutex m_mutex; ///< Guards m_last.
    mutable Point m_last;
};

} // namespace tavi
