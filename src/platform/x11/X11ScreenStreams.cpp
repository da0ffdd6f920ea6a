#include "platform/x11/X11ScreenStreams.h"

#include "platform/x11/ScreenGrabber.h"
#include "platform/x11/WindowGrabber.h"

#include <algorithm>
#include <atomic>
#include <ctime>
#include <utility>

namespace tavi {

namespace {

std::int64_t hostNanoseconds() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<std::int64_t>(t.tv_sec) * MediaTime::kNanoseconds + t.tv_nsec;
}

/// The interval in nanoseconds, rounded up, so that no two frames are closer.
std::int64_t intervalNanoseconds(MediaTime interval) {
    return (interval.value * MediaTime::kNanoseconds + interval.timescale - 1) / interval.timescale;
}

/// A picture may be taken so much sooner after one that came late; its time is still
/// an interval after that one's. Nanoseconds.
constexpr std::int64_t kCatchUp = 4'000'000;

/// When a picture that could not be used is sent again, if nothing changed until then: time for
/// an encoder to work off some. Nanoseconds.
constexpr std::int64_t kAgain = 50'000'000;

/// Waits on the queue for damage, no oftener than the minimum interval, and sends a picture
/// for each. It has no thread of its own: to wake another one costs more than the work.
class X11ScreenStream final : public ScreenStream {
public:
    X11ScreenStream(std::unique_ptr<Grabber> grabber, MediaTime minimumFrameInterval)
        : m_grabber(std::move(grabber)),
          m_interval(intervalNanoseconds(minimumFrameInterval)) {}

    ~X11ScreenStream() override { stop(); }

    Result<void, CaptureError> addStreamOutput(SerialQueue& queue, Handler handler) override {
        m_queue = &queue;
        m_handler = std::move(handler);
        return {};
    }

    Result<void, CaptureError> startCapture() override {
        m_isRunning = true;
        m_queue->setSource([this] { return step(); });
        return {};
    }

    Result<void, CaptureError> stopCapture() override {
        stop();
        return {};
    }

    std::optional<CaptureError> failure() const override {
        return m_hasFailed ? m_failure : std::nullopt;
    }

private:
    void stop() {
        if (std::exchange(m_isRunning, false)) {
            m_queue->setSource(nullptr);
        }
    }

    /// While something moves, one waking does all there is to do for a picture: it collects the one
    /// that was asked for at the last, and asks for the next.
    SerialQueue::Wait step() {
        if (m_asked && !m_grabber->hasCome()) {
            return {.descriptor = m_grabber->descriptor()};
        }
        if (m_asked) {
            send(m_grabber->collect(), *std::exchange(m_asked, std::nullopt));
        }
        const bool hasNews = m_grabber->hasNews();
        if (auto failure = m_grabber->failure()) {
            m_failure = std::move(failure);
            m_hasFailed = true;
            return {};
        }
        const std::int64_t now = hostNanoseconds();
        if (!hasNews && (!m_refused || now < m_again)) {
            return {.descriptor = m_grabber->descriptor(),
                    .time = m_refused ? std::optional(m_again) : std::nullopt};
        }
        // More damage before the next picture is no reason to wake up.
        if (now >= m_next && takePicture(hasNews, std::max(now, m_earliest))) {
            m_earliest = std::max(now, m_earliest) + m_interval;
            // Waking a little late is made up for, so that 60 a second stay 60.
            m_next = (now - m_next < kCatchUp ? m_next : now) + m_interval;
        }
        return {.time = m_next};
    }

    /// False when nothing in the picture changed, and none is owed. The first picture is not waited
    /// for until the next waking: what it starts begins at the moment of its time.
    bool takePicture(bool hasNews, std::int64_t time) {
        if (!hasNews || !m_grabber->request()) {
            return m_refused && send(std::exchange(m_refused, nullptr), time);
        }
        if (m_isFirst) {
            m_isFirst = !send(m_grabber->collect(), time);
        } else {
            m_asked = time;
        }
        return true;
    }

    bool send(PixelBufferPtr image, std::int64_t time) {
        if (!image) {
            return false;
        }
        const ScreenSample sample{.presentationTime = MediaTime::fromNanoseconds(time),
                                  .image = std::move(image),
                                  .movedTo = m_grabber->move()};
        m_refused = m_handler(sample) ? nullptr : sample.image;
        m_again = time + kAgain;
        return true;
    }

    std::unique_ptr<Grabber> m_grabber;  ///< The queue's own while the stream runs.
    std::int64_t m_interval;             ///< Nanoseconds.
    std::int64_t m_next = 0;             ///< When the next picture may be taken, likewise.
    std::optional<std::int64_t> m_asked; ///< The time of the picture that is on its way, likewise.
    bool m_isFirst = true;
    std::int64_t m_earliest = 0; ///< The least time of the next picture, at most kCatchUp later.
    PixelBufferPtr m_refused;    ///< The latest picture, where it could not be used.
    std::int64_t m_again = 0;    ///< When it is sent again.
    SerialQueue* m_queue = nullptr;
    Handler m_handler;
    bool m_isRunning = false;
    std::optional<CaptureError> m_failure; ///< Set before the next, and then no more.
    std::atomic<bool> m_hasFailed = false;
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

bool X11ScreenStreams::hasAlpha(const ScreenFilter& filter) {
    return filter.windowId != 0 && WindowGrabber::hasAlpha(m_displayName, filter.windowId);
}

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
