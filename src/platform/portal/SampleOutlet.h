#pragma once

#include "base/SerialQueue.h"
#include "capture/ScreenStream.h"

#include <memory>
#include <mutex>
#include <utility>

namespace tavi {

/// The way of a stream's samples to the queue that they are handled on; keeps the newest picture
/// for as long as it could not be used. Threads: any one; the handler runs on the queue, and
/// samples that were sent reach it after the outlet's end as well.
class SampleOutlet {
public:
    /// `queue` outlives the outlet.
    SampleOutlet(SerialQueue& queue, ScreenStream::Handler handler)
        : m_queue(queue),
          m_shared(std::make_shared<Shared>()) {
        m_shared->handler = std::move(handler);
    }

    void send(ScreenSample sample) {
        {
            const std::lock_guard lock(m_shared->mutex);
            ++m_shared->queued;
        }
        m_queue.post([shared = m_shared, sample = std::move(sample)] {
            const bool isUsed = shared->handler(sample);
            const std::lock_guard lock(shared->mutex);
            --shared->queued;
            shared->refused = isUsed ? nullptr : sample.image;
        });
    }

    /// Samples that the queue hasn't come to yet.
    int queued() const {
        const std::lock_guard lock(m_shared->mutex);
        return m_shared->queued;
    }

    /// The newest picture, if it could not be used.
    PixelBufferPtr refused() const {
        const std::lock_guard lock(m_shared->mutex);
        return m_shared->queued == 0 ? m_shared->refused : nullptr;
    }

private:
    struct Shared {
        ScreenStream::Handler handler;
        std::mutex mutex; ///< Guards what follows.
        int queued = 0;
        PixelBufferPtr refused;
    };

    SerialQueue& m_queue;
    std::shared_ptr<Shared> m_shared;
};

} // namespace tavi
