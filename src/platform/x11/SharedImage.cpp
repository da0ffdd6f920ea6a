#include "platform/x11/SharedImage.h"

#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace tavi {

namespace {

CaptureError missing(const char* what) {
    return {CaptureError::Kind::missingExtension, what};
}

/// 1.2 is the first version that takes descriptors.
Result<void, CaptureError> requireSharedMemory(const XConnection& x) {
    const auto extension = x.require(xcb_shm_id, "MIT-SHM");
    if (!extension) {
        return fail(extension.error());
    }
    const XOwned<xcb_shm_query_version_reply_t> version(
        xcb_shm_query_version_reply(x.get(), xcb_shm_query_version(x.get()), nullptr));
    const bool isNewEnough = version && (version->major_version > 1 || version->minor_version >= 2);
    return isNewEnough ? Result<void, CaptureError>() : fail(missing("MIT-SHM 1.2"));
}

} // namespace

Result<SharedImage, CaptureError> SharedImage::make(const XConnection& connection,
                                                    std::size_t bytes) {
    if (auto shared = requireSharedMemory(connection); !shared) {
        return fail(shared.error());
    }
    const int fd = memfd_create("tavi-screen", MFD_CLOEXEC);
    if (fd < 0 || ftruncate(fd, static_cast<off_t>(bytes)) != 0) {
        close(fd);
        return fail(missing("shared memory"));
    }
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (memory == MAP_FAILED) {
        close(fd);
        return fail(missing("shared memory"));
    }
    const xcb_shm_seg_t segment = xcb_generate_id(connection.get());
    SharedImage image(segment, {static_cast<std::uint8_t*>(memory), bytes});
    // The descriptor passes to the connection, which closes it.
    const auto attached = xcb_shm_attach_fd_checked(connection.get(), segment, fd, 0);
    if (const XOwned<xcb_generic_error_t> error(xcb_request_check(connection.get(), attached));
        error || connection.isBroken()) {
        return fail(missing("shared memory with a local server"));
    }
    return image;
}

SharedImage::SharedImage(SharedImage&& other) noexcept
    : m_segment(other.m_segment),
      m_bytes(std::exchange(other.m_bytes, {})) {}

SharedImage::~SharedImage() {
    if (!m_bytes.empty()) {
        munmap(m_bytes.data(), m_bytes.size());
    }
}

} // namespace tavi
