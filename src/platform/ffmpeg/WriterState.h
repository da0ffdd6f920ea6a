#pragma once

#include "media/AssetWriter.h"

#include <atomic>
#include <mutex>
#include <optional>

namespace tavi {

/// How a writer stands, shared with its inputs' threads. The first failure counts.
class WriterState {
public:
    AssetWriterStatus status() const { return m_status; }
    bool isWriting() const { return m_status == AssetWriterStatus::writing; }

    std::optional<MediaError> error() const {
        const std::lock_guard lock(m_mutex);
        return m_error;
    }

    void set(AssetWriterStatus status) { m_status = status; }

    void fail(const MediaError& error) {
        const std::lock_guard lock(m_mutex);
        if (!m_error) {
            m_error = error;
        }
        m_status = AssetWriterStatus::failed;
    }

private:
    std::atomic<AssetWriterStatus> m_status = AssetWriterStatus::unknown;
    mutable std::mutex m_mutex;
    std::optional<MediaError> m_error;
};

} // namespace tavi
