#include "platform/portal/PortalPointer.h"

#include <utility>

namespace tavi {

PortalPointer::PortalPointer(Executor& main, Arrow arrow)
    : m_main(main),
      m_arrow(std::move(arrow)) {}

PortalPointer::~PortalPointer() = default;

std::optional<PointerMonitors::Token>
PortalPointer::addGlobalMonitor(PointerEventKind kind, std::function<void()> handler) {
    return m_monitors.add(kind, std::move(handler));
}

void PortalPointer::removeMonitor(Token token) {
    m_monitors.remove(token);
}

Point PortalPointer::query() const {
    const std::lock_guard lock(m_mutex);
    const bool isHere = m_isThere || (m_isKnown && m_range == PointerRange::everything);
    return isHere ? m_position : Point{-1, m_position.y};
}

Point PortalPointer::lastKnown() const {
    const std::lock_guard lock(m_mutex);
    return m_isKnown ? m_position : Point{-1, m_position.y};
}

void PortalPointer::beginCast(PointerRange range) {
    const std::lock_guard lock(m_mutex);
    m_range = range;
    m_isThere = false;
    m_isKnown = false;
}

std::optional<SystemCursor> PortalPointer::currentSystemCursor() {
    const std::lock_guard lock(m_mutex);
    return m_image;
}

void PortalPointer::show(int x, int y, int height) {
    const Point position{static_cast<double>(x), static_cast<double>(height - y)};
    {
        const std::lock_guard lock(m_mutex);
        m_isKnown = true;
        if (std::exchange(m_isThere, true) && m_position == position) {
            return;
        }
        m_position = position;
    }
    if (!m_isMovePosted.exchange(true)) {
        m_main.post([this, alive = std::weak_ptr(m_alive)] {
            if (!alive.expired()) {
                m_isMovePosted = false;
                m_monitors.notify(PointerEventKind::mouseMoved);
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

} // namespace tavi
