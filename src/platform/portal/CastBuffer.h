#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <pipewire/stream.h>
#include <span>
#include <utility>
#include <vector>

namespace tavi {

/// Memory of a compositor's that this process may read, for as long as the object lives: also
/// after the compositor took the buffer back, so that a picture which is still looked at is
/// at worst an old one.
class MappedPlane {
public:
    explicit MappedPlane(const spa_data& data);
    ~MappedPlane();
    MappedPlane(const MappedPlane&) = delete;
    MappedPlane& operator=(const MappedPlane&) = delete;

    /// Empty where it can't be mapped.
    std::span<const std::uint8_t> bytes() const { return m_bytes; }

    /// True for memory that its owner doesn't write into while the buffer is held, and that is
    /// quick to read.
    bool isPlainMemory() const { return m_isPlainMemory; }

    /// Between the two the graphics card has finished its drawing; nothing for other memory.
    void beginReading() const;
    void endReading() const;

private:
    void sync(std::uint64_t flags) const;

    std::span<const std::uint8_t> m_bytes;
    void* m_mapping = nullptr;
    std::size_t m_mappedBytes = 0;
    int m_dmaBuf = -1;
    bool m_isPlainMemory = false;
};

/// One buffer of a stream, which may be gone before the pictures in it are.
struct CastBuffer {
    pw_buffer* raw = nullptr; ///< Of the stream's thread; null once the stream took it away.
    std::vector<std::unique_ptr<MappedPlane>> planes;
};
using CastBufferPtr = std::shared_ptr<CastBuffer>;

/// Buffers that were let go on some thread, until the stream's own gives them back.
class ReturnedBuffers {
public:
    void add(CastBufferPtr buffer) {
        const std::lock_guard lock(m_mutex);
        m_buffers.push_back(std::move(buffer));
        --m_lent;
    }
    std::vector<CastBufferPtr> takeAll() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_buffers, {});
    }
    /// Buffers that somebody else looks at.
    int lent() const { return m_lent; }
    void lend() { ++m_lent; }

private:
    std::mutex m_mutex;
    std::vector<CastBufferPtr> m_buffers;
    std::atomic<int> m_lent = 0;
};

} // namespace tavi
