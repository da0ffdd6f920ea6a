#include "platform/ffmpeg/PicturePresenter.h"

#include "platform/ffmpeg/HostDeadline.h"

#include <algorithm>
#include <pthread.h>
#include <utility>

namespace tavi {

namespace {

/// The one shown, the one that waits to be shown and the one being filled.
constexpr std::size_t kMostKept = 3;

/// The earlier of two moments, of which either may be absent.
std::optional<MediaTime> earlier(std::optional<MediaTime> a, std::optional<MediaTime> b) {
    return a && b ? std::min(*a, *b) : (a ? a : b);
}

PixelBuffer copyOf(const PixelBuffer& picture) {
    PixelBuffer copy(picture.width(), picture.height());
    std::copy_n(picture.data(), picture.stride() * static_cast<std::size_t>(picture.height()),
                copy.data());
    return copy;
}

} // namespace

PicturePresenter::PicturePresenter(const PlayerItem& item, const PlayerClock& clock,
                                   std::shared_ptr<const ColorConverter> colours, Observer observer)
    : m_observer(std::move(observer)),
      m_conversion(std::move(colours)),
      m_clock(clock),
      m_loader(item, clock,
               {[this](const ItemTimeline& timeline) { opened(timeline); }, [this] { wake(); }}),
      m_thread([this] { run(); }) {}

PicturePresenter::~PicturePresenter() {
    stop();
    m_thread.join();
}

void PicturePresenter::stop() {
    m_loader.stop();
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
}

void PicturePresenter::setClock(const PlayerClock& clock, bool isJump) {
    m_loader.setClock(clock, isJump);
    {
        const std::lock_guard lock(m_mutex);
        m_clock = clock;
        m_isEndTold = false;
        m_nextTick = clock.hostTime;
        m_isWoken = true;
    }
    m_changed.notify_all();
}

void PicturePresenter::setTickInterval(std::optional<MediaTime> interval) {
    {
        const std::lock_guard lock(m_mutex);
        m_interval = interval;
        m_nextTick = hostNow();
        m_isWoken = true;
    }
    m_changed.notify_all();
}

PixelBufferPtr PicturePresenter::take() {
    const std::lock_guard lock(m_mutex);
    m_isTaken = true;
    m_isWoken = true;
    m_changed.notify_all();
    return m_picture;
}

void PicturePresenter::opened(const ItemTimeline& timeline) {
    {
        const std::lock_guard lock(m_mutex);
        m_end = timeline.end();
    }
    m_observer.opened(timeline);
    wake();
}

void PicturePresenter::wake() {
    {
        const std::lock_guard lock(m_mutex);
        m_isWoken = true;
    }
    m_changed.notify_all();
}

void PicturePresenter::run() {
    pthread_setname_np(pthread_self(), "player-show");
    Lock lock(m_mutex);
    while (!m_isStopping) {
        m_isWoken = false;
        const MediaTime now = hostNow();
        Deadline next = show(lock, now);
        next = earlier(next, endOfItem(lock, now));
        next = earlier(next, tick(lock, now));
        const auto isWanted = [this] { return m_isWoken || m_isStopping; };
        if (next) {
            m_changed.wait_until(lock, hostDeadline(*next), isWanted);
        } else {
            m_changed.wait(lock, isWanted);
        }
    }
}

/// Tells of a tick that is due; returns when the next one is.
PicturePresenter::Deadline PicturePresenter::tick(Lock& lock, MediaTime now) {
    if (!m_interval || !m_clock.isMoving() || m_isEndTold) {
        return std::nullopt;
    }
    if (now >= m_nextTick) {
        m_nextTick = std::max(m_nextTick + *m_interval, now);
        lock.unlock();
        m_observer.tick();
        lock.lock();
    }
    return m_nextTick;
}

/// Tells of the end when it is reached; returns when it will be.
PicturePresenter::Deadline PicturePresenter::endOfItem(Lock& lock, MediaTime now) {
    if (!m_end || !m_clock.isMoving() || m_isEndTold) {
        return std::nullopt;
    }
    if (m_clock.at(now) < *m_end) {
        return m_clock.hostTimeOf(*m_end);
    }
    m_isEndTold = true;
    lock.unlock();
    m_observer.end();
    lock.lock();
    return std::nullopt;
}

/// Shows what is due, unless the picture before was not taken yet; returns when that
/// changes, where it is known.
PicturePresenter::Deadline PicturePresenter::show(Lock& lock, MediaTime now) {
    if (!m_isTaken) {
        return std::nullopt; // take() wakes.
    }
    lock.unlock();
    const DuePicture due = m_loader.due(now);
    const bool isNew = due.kind != DuePicture::Kind::unknown && due.frame != m_shownFrame;
    PixelBufferPtr picture = isNew && due.frame ? converted(*due.frame) : nullptr;
    if (isNew) {
        m_shownFrame = due.frame;
    }
    lock.lock();
    if (isNew && picture != m_picture) {
        m_picture = std::move(picture);
        m_isTaken = false;
        lock.unlock();
        m_observer.picture();
        lock.lock();
    }
    return due.until;
}

PixelBufferPtr PicturePresenter::converted(const AVFrame& frame) {
    const AVStream* stream = m_loader.stream();
    if (!m_pool) {
        m_pool.emplace(stream->codecpar->width, stream->codecpar->height, kMostKept);
    }
    std::shared_ptr<PixelBuffer> picture = m_pool->make();
    if (!m_conversion.convert(frame, *picture)) {
        return nullptr;
    }
    const DisplayRotation rotation = rotationOf(*stream);
    if (rotation == DisplayRotation{}) {
        return picture;
    }
    // A copy goes: the pool's own picture comes back to it whole.
    return std::make_shared<PixelBuffer>(rotation.apply(copyOf(*picture)));
}

} // namespace tavi
