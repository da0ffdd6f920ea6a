// Loaded into xdg-desktop-portal-wlr before its libraries. Release 0.7.0 casts only what a
// compositor offers as graphics memory too, which one without a graphics card doesn't: such an
// offer is added to each in shared memory. The portal finds no graphics card to take it up with.

#include <cstdint>
#include <cstring>
#include <dlfcn.h>

extern "C" {

struct wl_proxy;
const char* wl_proxy_get_class(wl_proxy* proxy);
int wl_proxy_add_listener(wl_proxy* proxy, void (**implementation)(), void* data);
}

namespace {

/// What a compositor tells of a picture that it was asked for, in the protocol's order
/// (zwlr_screencopy_frame_v1).
struct FrameListener {
    void (*buffer)(void*, wl_proxy*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t);
    void (*flags)();
    void (*ready)();
    void (*failed)();
    void (*damage)();
    void (*graphicsBuffer)(void*, wl_proxy*, std::uint32_t, std::uint32_t, std::uint32_t);
    void (*bufferDone)();
};

constexpr std::uint32_t kXrgb = 0x34325258; // "XR24"

const FrameListener* own = nullptr;
FrameListener wrapped{};

void offerBoth(void* data, wl_proxy* frame, std::uint32_t format, std::uint32_t width,
               std::uint32_t height, std::uint32_t stride) {
    own->buffer(data, frame, format, width, height, stride);
    own->graphicsBuffer(data, frame, kXrgb, width, height);
}

} // namespace

extern "C" int wl_proxy_add_listener(wl_proxy* proxy, void (**implementation)(), void* data) {
    using Original = int (*)(wl_proxy*, void (**)(), void*);
    static const auto original =
        reinterpret_cast<Original>(dlsym(RTLD_NEXT, "wl_proxy_add_listener"));
    if (std::strcmp(wl_proxy_get_class(proxy), "zwlr_screencopy_frame_v1") != 0) {
        return original(proxy, implementation, data);
    }
    own = reinterpret_cast<const FrameListener*>(implementation);
    wrapped = *own;
    wrapped.buffer = offerBoth;
    return original(proxy, reinterpret_cast<void (**)()>(&wrapped), data);
}
