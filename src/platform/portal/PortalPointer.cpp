#include "platform/portal/PortalPointer.h"

#include <utility>
#include <vector>

namespace tavi {

PortalPointer::PortalPointer(Executor& main, Arrow arrow)
    : m_main(main),
      m_arrow(std::move(arrow)) {}

PortalPointer::~PortalPointer() = default;

std::optional<PointerMonitors::Token>
PortalPointer::addGlobalMonitor(PointerEventKind kind, std::function<void()> handler) {
    const Token token = m_nextToken++;
    m_monitors[token] = {kind, std::move(handler)};
    return token;
}

void PortalPointer::removeMonitor(Token token) {
    m_monitors.erase(token);
}

Point PortalPointer::query() const {
    const std::lock_guard lock(m_mutex);
    return m_isThere ? m_position : Point{-1, m_position.y};
}

std::optional<SystemCursor> PortalPointer::currentSystemCursor() {
    const std::lock_guard lock(m_mutex);
    return m_image;
}

void PortalPointer::note(PointerEventKind kind) {
    if (kind == PointerEventKind::leftMouseDown || kind == PointerEventKind::leftMouseUp) {
        m_isLeftDown = kind == PointerEventKind::leftMouseDown;
    }
    notify(kind);
}

void PortalPointer::show(int x, int y, int height) {
    const Point position{static_cast<double>(x), static_cast<double>(height - y)};
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_isThere, true) && m_position == position) {
            return;
        }
        m_position = position;
    }
    if (!m_isMovePosted.exchange(true)) {
        m_main.post([this, alive = std::weak_ptr(m_alive)] {
            if (!alive.expired()) {
                notifyMove();
            }
        });
    }
}

void PortalPointer::hide() {
    const std::lock_guard lock(m_mutex);
    m_isThere = false;
}

void PortalPointer::setImage(SystemCursor image) {
    const std::lock_guard lock(m_mutex);
    m_image = std::move(image);
}

void PortalPointer::notifyMove() {
    m_isMovePosted = false;
    notify(m_isLeftDown ? PointerEventKind::leftMouseDragged : PointerEventKind::mouseMoved);
}

/// A handler may add and remove monitors.
void PortalPointer::notify(PointerEventKind kind) {
    std::vector<Token> tokens;
    for (const auto& [token, monitor] : m_monitors) {
        if (monitor.kind == kind) {
            tokens.push_back(token);
        }
    }
    for (const Token token : tokens) {
        if (const auto found = m_monitors.find(token); found != m_monitors.end()) {
            const auto handler = found->second.handler;
            handler();
        }
    }
}

} // namespace tavi
