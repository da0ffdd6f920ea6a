#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>
#include <wayland-client.h>

namespace tavi {

/// Gives an object of the compositor back with its owner.
struct WaylandDelete {
    void operator()(wl_display* p) const { wl_display_disconnect(p); }
    void operator()(wl_registry* p) const { wl_registry_destroy(p); }
    void operator()(wl_compositor* p) const { wl_compositor_destroy(p); }
    void operator()(wl_shm* p) const { wl_shm_destroy(p); }
    void operator()(wl_shm_pool* p) const { wl_shm_pool_destroy(p); }
    void operator()(wl_buffer* p) const { wl_buffer_destroy(p); }
    void operator()(wl_surface* p) const { wl_surface_destroy(p); }
    void operator()(wl_region* p) const { wl_region_destroy(p); }
};
template<typename T>
using WaylandHandle = std::unique_ptr<T, WaylandDelete>;

/// Something that a compositor offers.
struct WaylandGlobal {
    std::uint32_t number = 0;
    std::string interface;
    std::uint32_t version = 0;
};

/// A connection with the compositor that $WAYLAND_DISPLAY names, apart from every other one of the
/// process. Threads: one at a time.
class WaylandConnection {
public:
    /// Null when no compositor answers.
    static std::unique_ptr<WaylandConnection> open();

    wl_display* display() const { return m_display.get(); }

    /// All that there was at the start.
    const std::vector<WaylandGlobal>& globals() const { return m_globals; }

    /// An object for a global, of the smaller of both versions.
    template<typename T>
    T* bind(const WaylandGlobal& global, const wl_interface& interface,
            std::uint32_t version) const {
        return static_cast<T*>(wl_registry_bind(m_registry.get(), global.number, &interface,
                                                std::min(version, global.version)));
    }

    /// The same for the first global of an interface; null when there is none.
    template<typename T>
    T* bindFirst(const wl_interface& interface, std::uint32_t version) const {
        for (const WaylandGlobal& global : m_globals) {
            if (global.interface == interface.name) {
                return bind<T>(global, interface, version);
            }
        }
        return nullptr;
    }

    /// Waits until everything asked for so far was answered; false when the connection broke.
    bool roundTrip() const { return wl_display_roundtrip(m_display.get()) >= 0; }

private:
    explicit WaylandConnection(WaylandHandle<wl_display> display);

    WaylandHandle<wl_display> m_display;
    WaylandHandle<wl_registry> m_registry;
    std::vector<WaylandGlobal> m_globals;
};

} // namespace tavi
