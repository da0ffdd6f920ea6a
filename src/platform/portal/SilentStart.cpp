#include "platform/portal/SilentStart.h"

#include "base/MediaTime.h"

#include <ctime>

namespace tavi {

namespace {

// Nanoseconds.
constexpr std::int64_t kSilence = 300'000'000; ///< Until a picture is given up.
constexpr std::int64_t kRest = 100'000'000;    ///< Until everybody knows that the stream stopped.
constexpr int kMostBeginnings = 3;

} // namespace

SilentStart::SilentStart(pw_loop& loop)
    : m_loop(loop),
      m_timer(pw_loop_add_timer(&loop, ring, this)) {}

SilentStart::~SilentStart() {
    pw_loop_destroy_source(&m_loop, m_timer);
}

void SilentStart::watch(pw_stream& stream) {
    m_stream = &stream;
    m_beginnings = 0;
    if (!m_isStopped) {
        wakeAfter(kSilence);
    }
}

/// One that comes while the stream stops doesn't keep it from beginning again.
void SilentStart::pictureCame() {
    if (m_stream != nullptr && !m_isStopped) {
        stop();
    }
}

void SilentStart::stop() {
    m_stream = nullptr;
    m_isStopped = false;
    wakeAfter(0);
}

void SilentStart::ring(void* data, std::uint64_t) {
    static_cast<SilentStart*>(data)->beginAgain();
}

void SilentStart::beginAgain() {
    if (m_stream == nullptr || (!m_isStopped && m_beginnings == kMostBeginnings)) {
        return;
    }
    m_isStopped = !m_isStopped;
    m_beginnings += m_isStopped ? 1 : 0;
    pw_stream_set_active(m_stream, !m_isStopped);
    wakeAfter(m_isStopped ? kRest : kSilence);
}

/// 0: not at all.
void SilentStart::wakeAfter(std::int64_t nanoseconds) {
    timespec span{static_cast<time_t>(nanoseconds / MediaTime::kNanoseconds),
                  static_cast<long>(nanoseconds % MediaTime::kNanoseconds)};
    pw_loop_update_timer(&m_loop, m_timer, &span, nullptr, false);
}

} // namespace tavi
