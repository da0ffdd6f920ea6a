#include "platform/x11/X11ScreenStreams.h"

#include "platform/x11/FramePool.h"
#include "platform/x11/ScreenGrabber.h"
#include "platform/x11/WindowGrabber.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <ctime>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace tavi {

namespace {

std::int64_t hostNanoseconds() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<std::int64_t>(t.tv_sec) * MediaTime::kNanoseconds + t.tv_nsec;
}

timespec asTimespec(std::int64_t nanoseconds) {
    nanoseconds = std::max<std::int64_t>(nanoseconds, 0);
    return {static_cast<time_t>(nanoseconds / MediaTime::kNanoseconds),
            static_cast<long>(nanoseconds % MediaTime::kNanoseconds)};
}

/// The interval in nanoseconds, rounded up, so that no two frames are closer.
std::int64_t intervalNanoseconds(MediaTime interval) {
    return (interval.value * MediaTime::kNanoseconds + interval.timescale - 1) / interval.timescale;
}

/// Waits in poll() for damage, no oftener than the minimum interval, and sends
/// a picture for each.
class X11ScreenStream final : public ScreenStream {
public:
    X11ScreenStream(std::unique_ptr<Grabber> grabber, MediaTime minimumFrameInterval)
        : m_grabber(std::move(grabber)),
          m_interval(intervalNanoseconds(minimumFrameInterval)),
          m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

    ~X11ScreenStream() override {
        stopThread();
        close(m_wake);
    }

    Result<void, CaptureError> addStreamOutput(SerialQueue& queue, Handler handler) override {
        m_queue = &queue;
        m_handler = std::make_shared<const Handler>(std::move(handler));
        return {};
    }

    Result<void, CaptureError> startCapture() override {
        m_thread = std::thread([this] { run(); });
        pthread_setname_np(m_thread.native_handle(), "x11-screen");
        return {};
    }

    Result<void, CaptureError> stopCapture() override {
        stopThread();
        return {};
    }

    std::optional<CaptureError> failure() const override {
        return m_hasFailed ? m_failure : std::nullopt;
    }

private:
    void stopThread() {
        if (m_thread.joinable()) {
            m_isStopping = true;
            eventfd_write(m_wake, 1);
            m_thread.join();
        }
    }

    void run() {
        std::int64_t next = 0; // when the next picture may be taken
        while (!m_isStopping) {
            const bool hasNews = m_grabber->hasNews();
            if (auto failure = m_grabber->failure()) {
                m_failure = std::move(failure);
                m_hasFailed = true;
                return;
            }
            const std::int64_t now = hostNanoseconds();
            if (!hasNews) {
                wait(nullptr);
            } else if (now < next) {
                const timespec pause = asTimespec(next - now);
                wait(&pause);
            } else if (sendPicture(now)) {
                next = now + m_interval;
            }
        }
    }

    /// Sleeps until the server has something to say, the stream is to stop, or `limit` is over.
    void wait(const timespec* limit) const {
        // While a picture is held back, more damage is no reason to wake up.
        const short events = limit == nullptr ? POLLIN : 0;
        std::array<pollfd, 2> waits{pollfd{m_grabber->descriptor(), events, 0},
                                    pollfd{m_wake, POLLIN, 0}};
        ppoll(waits.data(), waits.size(), limit, nullptr);
    }

    /// False when nothing in the picture changed.
    bool sendPicture(std::int64_t now) {
        const PixelRect changed = m_grabber->grab();
        if (changed.isEmpty()) {
            return false;
        }
        ScreenSample sample;
        sample.presentationTime = MediaTime::fromNanoseconds(now);
        sample.image = m_pool.snapshot(m_grabber->picture(), changed);
        m_queue->post([handler = m_handler, sample = std::move(sample)] { (*handler)(sample); });
        return true;
    }

    std::unique_ptr<Grabber> m_grabber; ///< The thread's own while it runs.
    FramePool m_pool;                   ///< Likewise.
    std::int64_t m_interval;            ///< Nanoseconds.
    int m_wake;
    SerialQueue* m_queue = nullptr;
    std::shared_ptr<const Handler> m_handler; ///< Shared with blocks that still wait in the queue.
    std::atomic<bool> m_isStopping = false;
    std::optional<CaptureError> m_failure; ///< Set before the next, and then no more.
    std::atomic<bool> m_hasFailed = false;
    std::thread m_thread;
};

Result<std::unique_ptr<Grabber>, CaptureError>
openGrabber(const std::string& displayName, const ScreenFilter& filter,
            const ScreenStreamConfiguration& configuration) {
    if (filter.windowId != 0) {
        return WindowGrabber::open(displayName, filter.windowId, configuration.width,
                                   configuration.height);
    }
    return ScreenGrabber::open(displayName, filter.displayId, configuration.width,
                               configuration.height);
}

} // namespace

Result<std::unique_ptr<ScreenStream>, CaptureError>
X11ScreenStreams::makeStream(const ScreenFilter& filter,
                             const ScreenStreamConfiguration& configuration) {
    auto grabber = openGrabber(m_displayName, filter, configuration);
    if (!grabber) {
        return fail(grabber.error());
    }
    return std::make_unique<X11ScreenStream>(std::move(*grabber),
                                             configuration.minimumFrameInterval);
}

} // namespace tavi
