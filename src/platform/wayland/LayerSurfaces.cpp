#include "platform/wayland/LayerSurfaces.h"

#include "platform/wayland/WaylandOutputs.h"

#include <QSocketNotifier>

#include <cstring>
#include <layer-shell-client-protocol.h>
#include <list>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace tavi {

namespace {

/// Since this version a compositor is told a picture's scale, and since the next what changed.
constexpr std::uint32_t kScaledCompositor = 4;

/// A picture that the compositor may still be reading.
struct Shown {
    WaylandHandle<wl_buffer> buffer;
    bool isReleased = false;
};

constexpr wl_buffer_listener kBuffer{
    [](void* shown, wl_buffer*) { static_cast<Shown*>(shown)->isReleased = true; }};

/// A copy of the picture that the compositor can read; null when there is no memory.
WaylandHandle<wl_buffer> copyFor(wl_shm& shm, const PixelBuffer& picture) {
    const std::size_t size = picture.stride() * static_cast<std::size_t>(picture.height());
    const int memory = memfd_create("tavlin-overlay", MFD_CLOEXEC);
    void* mapped = MAP_FAILED;
    if (memory >= 0 && ftruncate(memory, static_cast<off_t>(size)) == 0) {
        mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    }
    WaylandHandle<wl_buffer> buffer;
    if (mapped != MAP_FAILED) {
        std::memcpy(mapped, picture.data(), size);
        munmap(mapped, size);
        const WaylandHandle<wl_shm_pool> pool(
            wl_shm_create_pool(&shm, memory, static_cast<std::int32_t>(size)));
        buffer.reset(wl_shm_pool_create_buffer(pool.get(), 0, picture.width(), picture.height(),
                                               static_cast<std::int32_t>(picture.stride()),
                                               WL_SHM_FORMAT_ARGB8888));
    }
    if (memory >= 0) {
        close(memory);
    }
    return buffer;
}

class LayerSurface final : public OverlaySurface {
public:
    /// The connection has a layer shell.
    LayerSurface(std::unique_ptr<WaylandConnection> connection, zwlr_layer_shell_v1* shell,
                 const Rect& frame, OverlaySurfaces::Sized sized)
        : m_connection(std::move(connection)),
          m_sized(std::move(sized)),
          m_outputs(std::make_unique<WaylandOutputs>(*m_connection)),
          m_compositor(
              m_connection->bindFirst<wl_compositor>(wl_compositor_interface, kScaledCompositor)),
          m_shm(m_connection->bindFirst<wl_shm>(wl_shm_interface, 1)),
          m_surface(wl_compositor_create_surface(m_compositor.get())),
          m_notifier(wl_display_get_fd(m_connection->display()), QSocketNotifier::Read) {
        const WaylandOutput* output = m_outputs->ofSize({frame.width, frame.height});
        m_scale = output != nullptr ? output->scale() : 1;
        m_layer = zwlr_layer_shell_v1_get_layer_surface(
            shell, m_surface.get(), output != nullptr ? output->object : nullptr,
            ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "tavlin-countdown");
        zwlr_layer_shell_v1_destroy(shell);
        describe(output != nullptr);
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { read(); });
    }
    ~LayerSurface() override {
        zwlr_layer_surface_v1_destroy(m_layer);
        m_surface.reset();
        m_shown.clear();
        m_connection->roundTrip(); // it is gone from the screen when this returns
    }
    LayerSurface(const LayerSurface&) = delete;
    LayerSurface& operator=(const LayerSurface&) = delete;

    void show(const PixelBuffer& picture) override {
        m_shown.remove_if([](const Shown& shown) { return shown.isReleased; });
        auto buffer = m_isClosed || picture.empty() ? nullptr : copyFor(*m_shm, picture);
        if (!buffer) {
            return;
        }
        Shown& shown = m_shown.emplace_back(std::move(buffer));
        wl_buffer_add_listener(shown.buffer.get(), &kBuffer, &shown);
        wl_surface_set_buffer_scale(m_surface.get(), m_scale);
        wl_surface_attach(m_surface.get(), shown.buffer.get(), 0, 0);
        wl_surface_damage_buffer(m_surface.get(), 0, 0, picture.width(), picture.height());
        wl_surface_commit(m_surface.get());
        wl_display_flush(m_connection->display());
    }

private:
    /// Clicks and keys go to what is below; panels make no room.
    void describe(bool coversOutput) {
        static constexpr zwlr_layer_surface_v1_listener kListener{
            [](void* self, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t width,
               std::uint32_t height) {
                zwlr_layer_surface_v1_ack_configure(layer, serial);
                auto& surface = *static_cast<LayerSurface*>(self);
                surface.m_sized({static_cast<double>(width), static_cast<double>(height)},
                                surface.m_scale);
            },
            [](void* self, zwlr_layer_surface_v1*) {
                static_cast<LayerSurface*>(self)->m_isClosed = true;
            }};
        constexpr std::uint32_t kAllEdges = 1 | 2 | 4 | 8;
        constexpr int kOverPanels = -1;
        constexpr auto kSide = static_cast<std::uint32_t>(LayerSurfaces::kCardSide);
        zwlr_layer_surface_v1_add_listener(m_layer, &kListener, this);
        zwlr_layer_surface_v1_set_size(m_layer, coversOutput ? 0 : kSide, coversOutput ? 0 : kSide);
        zwlr_layer_surface_v1_set_anchor(m_layer, coversOutput ? kAllEdges : 0);
        zwlr_layer_surface_v1_set_exclusive_zone(m_layer, kOverPanels);
        const WaylandHandle<wl_region> nothing(wl_compositor_create_region(m_compositor.get()));
        wl_surface_set_input_region(m_surface.get(), nothing.get());
        wl_surface_commit(m_surface.get());
        wl_display_flush(m_connection->display());
    }

    void read() {
        if (wl_display_dispatch(m_connection->display()) < 0) {
            m_isClosed = true;
            m_notifier.setEnabled(false);
        }
        wl_display_flush(m_connection->display());
    }

    std::unique_ptr<WaylandConnection> m_connection; ///< Goes last.
    OverlaySurfaces::Sized m_sized;
    std::unique_ptr<WaylandOutputs> m_outputs;
    WaylandHandle<wl_compositor> m_compositor;
    WaylandHandle<wl_shm> m_shm;
    WaylandHandle<wl_surface> m_surface;
    zwlr_layer_surface_v1* m_layer = nullptr;
    std::list<Shown> m_shown;
    int m_scale = 1;
    bool m_isClosed = false;
    QSocketNotifier m_notifier;
};

} // namespace

std::unique_ptr<OverlaySurface> LayerSurfaces::makeSurface(const Rect& frame, Sized sized) {
    auto connection = WaylandConnection::open();
    if (!connection) {
        return nullptr;
    }
    auto* shell = connection->bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 1);
    if (shell == nullptr) {
        return nullptr;
    }
    return std::make_unique<LayerSurface>(std::move(connection), shell, frame, std::move(sized));
}

} // namespace tavi
