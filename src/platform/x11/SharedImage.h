#pragma once

#include "base/Result.h"
#include "platform/x11/XConnection.h"

#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace tavi {

/// Memory that the X server writes pictures into (MIT-SHM by descriptor, so
/// nothing is left behind by a process that is killed).
///
/// The server lets go of it when the connection ends; the memory stays until the object is gone.
class SharedImage {
public:
    static Result<SharedImage, CaptureError> make(const XConnection& connection, std::size_t bytes);
    ~SharedImage();
    SharedImage(SharedImage&& other) noexcept;
    SharedImage& operator=(SharedImage&&) = delete;

    xcb_shm_seg_t segment() const { return m_segment; }
    std::span<std::uint8_t> bytes() const { return m_bytes; }

private:
    SharedImage(xcb_shm_seg_t segment, std::span<std::uint8_t> bytes)
        : m_segment(segment),
          m_bytes(bytes) {}

    xcb_shm_seg_t m_segment;
    std::span<std::uint8_t> m_bytes;
};

} // namespace tavi
