#pragma once

#include "base/Geometry.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tavi {

/// The kinds of pointer event that can be watched, wherever on the desktop they happen.
enum class PointerEventKind {
    mouseMoved,       ///< With the left button up.
    leftMouseDragged, ///< A move with the left button down.
    leftMouseDown,
    leftMouseUp,
    rightMouseDown,
    scrollWheel, ///< One tick of a wheel, in any direction.
};

/// Subscriptions to pointer events of the whole desktop. Main thread; handlers run there.
class PointerMonitors {
public:
    using Token = std::uint64_t;

    virtual ~PointerMonitors() = default;

    /// Calls `handler` at each event of the kind; absent when events can't be watched.
    virtual std::optional<Token> addGlobalMonitor(PointerEventKind kind,
                                                  std::function<void()> handler) = 0;

    /// No call of the handler after it returns. An unknown token is ignored.
    virtual void removeMonitor(Token token) = 0;
};

/// Where the pointer is now, in the global bottom-left-origin space, in points. Any thread.
class PointerLocation {
public:
    virtual ~PointerLocation() = default;
    virtual Point query() const = 0;

    /// The same, but where the window system doesn't tell where the pointer is now (it is hidden,
    /// or on a display that nobody looks at) the last place that it told.
    virtual Point lastKnown() const { return query(); }
};

/// A cursor as the system shows it.
struct SystemCursor {
    /// The picture in the form of CursorImageBytes.h: equal for equal pictures.
    /// Empty when the system doesn't give the pixels away.
    std::vector<std::uint8_t> imageBytes;
    Point hotSpot; ///< Points from the picture's top left corner.
    Size size;     ///< Points.
};

/// The cursor's picture. Any thread.
class CursorImages {
public:
    virtual ~CursorImages() = default;

    /// The plain arrow of the user's cursor theme.
    virtual std::optional<SystemCursor> arrowCursor() = 0;

    /// What is on screen now.
    virtual std::optional<SystemCursor> currentSystemCursor() = 0;
};

} // namespace tavi
