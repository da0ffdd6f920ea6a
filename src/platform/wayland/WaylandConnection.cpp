#include "platform/wayland/WaylandConnection.h"

#include <utility>

namespace tavi {

std::unique_ptr<WaylandConnection> WaylandConnection::open() {
    WaylandHandle<wl_display> display(wl_display_connect(nullptr));
    if (!display) {
        return nullptr;
    }
    std::unique_ptr<WaylandConnection> connection(new WaylandConnection(std::move(display)));
    return connection->roundTrip() ? std::move(connection) : nullptr;
}

WaylandConnection::WaylandConnection(WaylandHandle<wl_display> display)
    : m_display(std::move(display)),
      m_registry(wl_display_get_registry(m_display.get())) {
    static constexpr wl_registry_listener kListener{
        [](void* self, wl_registry*, std::uint32_t number, const char* interface,
           std::uint32_t version) {
            static_cast<WaylandConnection*>(self)->m_globals.push_back(
                {number, interface, version});
        },
        [](void*, wl_registry*, std::uint32_t) {}};
    wl_registry_add_listener(m_registry.get(), &kListener, this);
}

} // namespace tavi
