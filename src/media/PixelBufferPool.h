#pragma once

#include "base/PixelBuffer.h"

#include <memory>
#include <mutex>
#include <vector>

namespace tavi {

/// Pictures of one size that come back when their last owner lets go of them.
///
/// Threads: any. Pictures may outlive the pool; the memory of those that come
/// back after its end is freed.
class PixelBufferPool {
public:
    /// Keeps at most `mostKept` free pictures.
    PixelBufferPool(int width, int height, std::size_t mostKept)
        : m_shelf(std::make_shared<Shelf>()),
          m_width(width),
          m_height(height) {
        m_shelf->mostKept = mostKept;
    }

    /// A picture with undefined content.
    std::shared_ptr<PixelBuffer> make() {
        std::unique_ptr<PixelBuffer> picture = m_shelf->take();
        if (!picture) {
            picture = std::make_unique<PixelBuffer>(m_width, m_height);
        }
        return {picture.release(), [shelf = std::weak_ptr(m_shelf)](PixelBuffer* returned) {
                    std::unique_ptr<PixelBuffer> owned(returned);
                    if (const auto alive = shelf.lock()) {
                        alive->put(std::move(owned));
                    }
                }};
    }

private:
    struct Shelf {
        std::unique_ptr<PixelBuffer> take() {
            const std::lock_guard lock(mutex);
            if (free.empty()) {
                return nullptr;
            }
            std::unique_ptr<PixelBuffer> picture = std::move(free.back());
            free.pop_back();
            return picture;
        }
        void put(std::unique_ptr<PixelBuffer> picture) {
            const std::lock_guard lock(mutex);
            if (free.size() < mostKept) {
                free.push_back(std::move(picture));
            }
        }

        std::mutex mutex;
        std::vector<std::unique_ptr<PixelBuffer>> free;
        std::size_t mostKept = 0;
    };

    std::shared_ptr<Shelf> m_shelf;
    int m_width;
    int m_height;
};

} // namespace tavi
