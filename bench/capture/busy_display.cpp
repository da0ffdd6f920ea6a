// Paints moving stripes over a large part of a display, 60 times a second, until it is ended.
//
//   busy_display [PART]    PART of the display's height, from its top; 0.75 without

#include "platform/x11/XConnection.h"

#include <xcb/shm.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace tavi;

constexpr long kNanosecondsPerFrame = 1'000'000'000 / 60;
constexpr int kPictures = 4;

/// Memory that the server reads: `kPictures` pictures, one under the other.
struct Pictures {
    xcb_shm_seg_t segment = 0;
    std::uint32_t* pixels = nullptr;
};

Pictures makePictures(const XConnection& x, int width, int height) {
    const auto pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const std::size_t bytes = pixels * kPictures * sizeof(std::uint32_t);
    const int fd = memfd_create("busy-display", MFD_CLOEXEC);
    if (fd < 0 || ftruncate(fd, static_cast<off_t>(bytes)) != 0) {
        std::perror("busy_display");
        std::exit(EXIT_FAILURE);
    }
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    Pictures pictures{xcb_generate_id(x.get()), static_cast<std::uint32_t*>(memory)};
    for (int n = 0; n < kPictures; ++n) {
        for (int i = 0; i < width * height; ++i) {
            const int stripe = (i % width + i / width + n * 16) / 32;
            pictures.pixels[static_cast<std::size_t>(n) * pixels + static_cast<std::size_t>(i)] =
                static_cast<std::uint32_t>(stripe * 0x10305);
        }
    }
    xcb_shm_attach_fd(x.get(), pictures.segment, fd, 1);
    return pictures;
}

xcb_window_t makeWindow(const XConnection& x, int width, int height) {
    const xcb_window_t window = xcb_generate_id(x.get());
    const std::uint32_t unmanaged = 1;
    xcb_create_window(x.get(), XCB_COPY_FROM_PARENT, window, x.root(), 0, 0,
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &unmanaged);
    xcb_map_window(x.get(), window);
    return window;
}

void waitForFrame(timespec& next) {
    next.tv_nsec += kNanosecondsPerFrame;
    if (next.tv_nsec >= 1'000'000'000) {
        next.tv_nsec -= 1'000'000'000;
        ++next.tv_sec;
    }
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
}

} // namespace

int main(int argc, char** argv) {
    const double part = argc > 1 ? std::atof(argv[1]) : 0.75;
    const auto x = XConnection::open({});
    if (!x) {
        std::fprintf(stderr, "busy_display: %s\n", x.error().description().c_str());
        return EXIT_FAILURE;
    }
    const int width = x->screen().width_in_pixels;
    const int height = static_cast<int>(x->screen().height_in_pixels * part);
    const Pictures pictures = makePictures(*x, width, height);
    const xcb_window_t window = makeWindow(*x, width, height);
    const xcb_gcontext_t gc = xcb_generate_id(x->get());
    xcb_create_gc(x->get(), gc, window, 0, nullptr);
    timespec next{};
    clock_gettime(CLOCK_MONOTONIC, &next);
    for (int frame = 0; !x->isBroken(); ++frame) {
        const auto w = static_cast<std::uint16_t>(width);
        const auto h = static_cast<std::uint16_t>(height);
        const std::uint32_t offset =
            static_cast<std::uint32_t>(frame % kPictures) * w * h * sizeof(std::uint32_t);
        xcb_shm_put_image(x->get(), window, gc, w, h, 0, 0, w, h, 0, 0, x->screen().root_depth,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, 0, pictures.segment, offset);
        xcb_flush(x->get());
        waitForFrame(next);
    }
    return EXIT_SUCCESS;
}
