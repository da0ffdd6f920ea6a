#include "platform/x11/FramePool.h"

#include <algorithm>
#include <utility>

namespace tavi {

Result<FramePool, CaptureError> FramePool::make(const XConnection& x, int width, int height) {
    FramePool pool(width, height);
    if (auto added = pool.addFrame(x); !added) {
        return fail(added.error());
    }
    return pool;
}

Result<void, CaptureError> FramePool::addFrame(const XConnection& x) {
    auto memory = SharedImage::make(x, PixelBuffer::bytesFor(m_width, m_height));
    if (!memory) {
        return fail(memory.error());
    }
    m_frames.push_back(std::make_shared<Frame>(std::move(*memory), m_width, m_height));
    m_frames.back()->stale.add(wholePicture());
    return {};
}

void FramePool::markStale(const PixelRegion& region) {
    for (const auto& frame : m_frames) {
        frame->stale.add(region);
    }
}

FramePool::FramePtr FramePool::freeFrame(const XConnection& x) {
    const auto isFree = [](const FramePtr& frame) {
        return !frame->isInUse.load(std::memory_order_acquire);
    };
    const auto free = std::find_if(m_frames.begin(), m_frames.end(), isFree);
    if (free != m_frames.end()) {
        return *free;
    }
    return addFrame(x) ? m_frames.back() : nullptr;
}

PixelBufferPtr FramePool::publish(const FramePtr& frame) {
    frame->isInUse.store(true, std::memory_order_relaxed);
    return {&frame->image, [frame](const PixelBuffer*) {
                frame->isInUse.store(false, std::memory_order_release);
            }};
}

} // namespace tavi
