#pragma once

#include "base/Executor.h"
#include "capture/PointerMonitorList.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace tavi {

/// What a cast shows of all the places where the pointer can be.
enum class PointerRange { part, everything };

/// The pointer as the streams of a portal tell of it. Its global space is what is cast: a
/// stream's picture lies with its bottom left corner at the origin, a point a pixel.
///
/// No stream tells of buttons and wheels, so every move counts as one with the buttons up, and
/// monitors of other kinds are never called: the key helper tells of them.
/// Threads: monitors on the main one; the rest is called from any.
class PortalPointer final : public PointerMonitors, public PointerLocation, public CursorImages {
public:
    using Arrow = std::function<std::optional<SystemCursor>()>;

    /// `arrow` is the user's plain arrow; `main` outlives the object.
    PortalPointer(Executor& main, Arrow arrow);
    ~PortalPointer() override;

    std::optional<Token> addGlobalMonitor(PointerEventKind kind,
                                          std::function<void()> handler) override;
    void removeMonitor(Token token) override;

    /// A pointer that isn't told of is hidden, or elsewhere: streams don't say which. Where it can
    /// be nowhere else it stays where it was; else it counts as one point left of the picture, so
    /// that clicks on another display are no clicks of a take.
    Point query() const override;

    /// Of keys nobody asks where the pointer is exactly: it is hidden while its user types.
    Point lastKnown() const override;

    std::optional<SystemCursor> arrowCursor() override { return m_arrow(); }
    std::optional<SystemCursor> currentSystemCursor() override;

    /// Another source is cast: the pointer is nowhere until show().
    void beginCast(PointerRange range);

    /// Of a stream whose picture is `height` pixels high: the pointer is there, in pixels from
    /// the picture's top left corner.
    void show(int x, int y, int height);
    void hide();
    void setImage(SystemCursor image);

private:
    struct Alive {};

    Executor& m_main;
    Arrow m_arrow;
    std::shared_ptr<Alive> m_alive = std::make_shared<Alive>(); ///< Held weakly by blocks.
    PointerMonitorList m_monitors;                              ///< Of the main thread.
    std::atomic<bool> m_isMovePosted = false;

    mutable std::mutex m_mutex; ///< Guards what follows.
    Point m_position;
    PointerRange m_range = PointerRange::part;
    bool m_isThere = false;
    bool m_isKnown = false; ///< It has a position, which may be an old one.
    std::optional<SystemCursor> m_image;
};

} // namespace tavi
