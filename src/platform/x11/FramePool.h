#pragma once

#include "base/PixelBuffer.h"
#include "platform/x11/PixelRect.h"

#include <atomic>
#include <memory>
#include <vector>

namespace tavi {

/// Turns a picture that keeps changing into immutable ones, in recycled memory:
/// a picture that comes back is brought up to date by the area that changed
/// since it was last used.
///
/// Threads: snapshot() on one thread; the pictures are let go on any.
class FramePool {
public:
    /// A copy of `source`. `changed` is the area that changed since the last
    /// call; all calls have a source of the same size.
    PixelBufferPtr snapshot(const PixelBuffer& source, const PixelRect& changed);

    /// Pictures in memory, used and free.
    std::size_t size() const { return m_slots.size(); }

private:
    struct Slot {
        PixelBuffer image;
        PixelRect stale; ///< Where the image isn't what the source was at the last call.
        std::atomic<bool> isInUse = false;
    };

    std::shared_ptr<Slot> freeSlot(const PixelBuffer& source);

    std::vector<std::shared_ptr<Slot>> m_slots;
};

} // namespace tavi
