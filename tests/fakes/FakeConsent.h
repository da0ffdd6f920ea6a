#pragma once

#include "capture/SourceConsent.h"

#include <condition_variable>
#include <mutex>
#include <vector>

namespace tavi {

/// A desktop whose user answers as the test says, at once or when it is told to.
class FakeConsent final : public SourceConsent {
public:
    Result<Consent, CaptureError> ask(const ScreenFilter& filter,
                                      const std::stop_token& stop) override {
        const std::stop_callback wake(stop, [this] { m_changed.notify_all(); });
        std::unique_lock lock(m_mutex);
        m_asked.push_back(filter);
        m_changed.wait(lock, [&] { return !m_isHeld || stop.stop_requested(); });
        return m_isHeld ? Result<Consent, CaptureError>(Consent::declined) : answer;
    }

    void release() override { ++releases; }

    /// Keeps questions open until they are let go.
    void hold(bool isHeld) {
        {
            const std::lock_guard lock(m_mutex);
            m_isHeld = isHeld;
        }
        m_changed.notify_all();
    }

    std::vector<ScreenFilter> asked() const {
        const std::lock_guard lock(m_mutex);
        return m_asked;
    }

    Result<Consent, CaptureError> answer = Consent::given;
    int releases = 0; ///< Of the main thread.

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<ScreenFilter> m_asked;
    bool m_isHeld = false;
};

} // namespace tavi
