#pragma once

#include "base/PixelBuffer.h"
#include "platform/x11/PixelRegion.h"
#include "platform/x11/SharedImage.h"

#include <atomic>
#include <memory>
#include <vector>

namespace tavi {

/// Recycled pictures in memory that the X server can write into. Each remembers where
/// it is no longer what the source is.
///
/// The pictures may outlive the pool and the connection. Threads: one; what publish() gave is
/// let go on any.
class FramePool {
public:
    struct Frame {
        Frame(SharedImage shared, int width, int height)
            : memory(std::move(shared)),
              image(PixelBuffer::over(memory.bytes().data(), width, height)) {}

        SharedImage memory;
        PixelBuffer image; ///< In `memory`, from its start.
        PixelRegion stale; ///< What must be fetched before the picture is shown.
        std::atomic<bool> isInUse = false;
    };
    using FramePtr = std::shared_ptr<Frame>;

    /// Makes a first picture of the size, so that what is missing is told at once.
    static Result<FramePool, CaptureError> make(const XConnection& x, int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }
    PixelRect wholePicture() const { return {0, 0, m_width, m_height}; }

    /// The source changed there.
    void markStale(const PixelRegion& region);

    /// A picture that nobody looks at; null when there is no memory for another one. The
    /// connection is always the same.
    FramePtr freeFrame(const XConnection& x);

    /// A finished picture, which stays as it is until the last owner lets it go.
    static PixelBufferPtr publish(const FramePtr& frame);

    /// Pictures in memory, used and free.
    std::size_t size() const { return m_frames.size(); }

private:
    FramePool(int width, int height) : m_width(width), m_height(height) {}

    Result<void, CaptureError> addFrame(const XConnection& x);

    int m_width;
    int m_height;
    std::vector<FramePtr> m_frames;
};

} // namespace tavi
