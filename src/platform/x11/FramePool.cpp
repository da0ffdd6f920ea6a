#include "platform/x11/FramePool.h"

namespace tavi {

namespace {

void copyArea(PixelBuffer& to, const PixelBuffer& from, const PixelRect& area) {
    const std::size_t offset = static_cast<std::size_t>(area.x) * PixelBuffer::kBytesPerPixel;
    const std::size_t bytes = static_cast<std::size_t>(area.width) * PixelBuffer::kBytesPerPixel;
    for (int y = area.y; y < area.y + area.height; ++y) {
        std::memcpy(to.row(y) + offset, from.row(y) + offset, bytes);
    }
}

} // namespace

PixelBufferPtr FramePool::snapshot(const PixelBuffer& source, const PixelRect& changed) {
    for (const auto& slot : m_slots) {
        slot->stale = slot->stale.united(changed);
    }
    const auto slot = freeSlot(source);
    if (!slot->stale.isEmpty()) {
        copyArea(slot->image, source, slot->stale);
    }
    slot->stale = {};
    slot->isInUse.store(true, std::memory_order_relaxed);
    return {&slot->image,
            [slot](const PixelBuffer*) { slot->isInUse.store(false, std::memory_order_release); }};
}

std::shared_ptr<FramePool::Slot> FramePool::freeSlot(const PixelBuffer& source) {
    for (const auto& slot : m_slots) {
        if (!slot->isInUse.load(std::memory_order_acquire)) {
            return slot;
        }
    }
    auto slot = std::make_shared<Slot>();
    slot->image = PixelBuffer(source.width(), source.height());
    slot->stale = {0, 0, source.width(), source.height()};
    m_slots.push_back(slot);
    return slot;
}

} // namespace tavi
