#include "platform/ffmpeg/FfmpegMediaPlayer.h"

#include "platform/ffmpeg/HostDeadline.h"

#include <cmath>
#include <utility>

namespace tavi {

namespace {

/// What plays goes on so long after a seek: the time that most seeks take, so that nothing of
/// what follows is skipped.
constexpr MediaTime kSeekLead{1, 20};

/// Runs `what` on the main thread unless the player has let go of the item by then.
template<class Link, class What>
void postTo(Executor& main, std::weak_ptr<Link> link, What what) {
    main.post([link = std::move(link), what = std::move(what)] {
        const auto alive = link.lock();
        if (alive && alive->player != nullptr) {
            what(*alive->player);
        }
    });
}

} // namespace

FfmpegMediaPlayer::FfmpegMediaPlayer(const PlayerItem& item, Surroundings surroundings)
    : m_surroundings(std::move(surroundings)) {
    load(item);
}

FfmpegMediaPlayer::~FfmpegMediaPlayer() {
    letGo();
}

void FfmpegMediaPlayer::load(const PlayerItem& item) {
    m_link = std::make_shared<Link>();
    m_link->player = this;
    m_clock = PlayerClock::standing({});
    m_timeline =
        item.delayedTrack ? ItemTimeline::ofDelayedTrack(*item.delayedTrack) : ItemTimeline();
    m_item = std::make_unique<PlayingItem>(item, m_surroundings.colours, m_surroundings.sound,
                                           observerFor(m_link));
    m_item->pictures().setTickInterval(m_interval);
}

/// Stops the item; what takes time of that happens elsewhere.
void FfmpegMediaPlayer::letGo() {
    m_link->player = nullptr; // Its threads may still hold on to it.
    m_link.reset();
    m_item->stop();
    m_surroundings.ends.post([item = std::shared_ptr(std::move(m_item))] {});
}

/// Called on the item's threads.
PicturePresenter::Observer FfmpegMediaPlayer::observerFor(const std::shared_ptr<Link>& link) {
    Executor& main = m_surroundings.main;
    const std::weak_ptr<Link> weak = link;
    PicturePresenter::Observer observer;
    observer.opened = [&main, weak](const ItemTimeline& timeline) {
        postTo(main, weak, [timeline](auto& player) { player.m_timeline = timeline; });
    };
    observer.picture = [&main, weak] {
        postTo(main, weak, [](auto& player) { player.pictureChanged(); });
    };
    observer.end = [&main, weak] { postTo(main, weak, [](auto& player) { player.endReached(); }); };
    observer.tick = [&main, weak] {
        const auto alive = weak.lock();
        if (alive && !alive->isTickWaiting.exchange(true)) {
            postTo(main, weak, [](auto& player) { player.tick(); });
        }
    };
    return observer;
}

void FfmpegMediaPlayer::replaceCurrentItem(const PlayerItem& item) {
    letGo();
    load(item);
    if (std::exchange(m_picture, nullptr)) {
        postTo(m_surroundings.main, std::weak_ptr(m_link),
               [](auto& player) { player.tell(player.m_pictureObserver); });
    }
}

MediaTime FfmpegMediaPlayer::currentTime() const {
    return m_timeline.limited(m_clock.isMoving() ? m_clock.at(hostNow()) : m_clock.time);
}

void FfmpegMediaPlayer::setClock(const PlayerClock& clock, bool isJump) {
    m_clock = clock;
    m_item->setClock(clock, isJump);
}

void FfmpegMediaPlayer::postTick() {
    if (!m_link->isTickWaiting.exchange(true)) {
        postTo(m_surroundings.main, std::weak_ptr(m_link), [](auto& player) { player.tick(); });
    }
}

void FfmpegMediaPlayer::seek(MediaTime time) {
    const MediaTime target = m_timeline.limited(time);
    setClock(m_clock.isMoving() ? PlayerClock{m_clock.rate, target, hostNow() + kSeekLead}
                                : PlayerClock::standing(target),
             true);
    postTick();
}

void FfmpegMediaPlayer::setRate(double rate, MediaTime time, MediaTime hostTime) {
    const MediaTime from = m_timeline.limited(time);
    const bool isMoving = rate > 0 && std::isfinite(rate);
    const PlayerClock clock =
        isMoving ? PlayerClock{rate, from, hostTime} : PlayerClock::standing(from);
    setClock(clock, m_timeline.limited(clock.at(hostNow())) != currentTime());
}

void FfmpegMediaPlayer::pause() {
    if (m_clock.isMoving()) {
        setClock(PlayerClock::standing(currentTime()), false);
    }
}

void FfmpegMediaPlayer::setPeriodicTimeObserver(MediaTime interval, TimeObserver observer) {
    m_timeObserver = std::move(observer);
    m_interval = m_timeObserver && interval.value > 0 ? std::optional(interval) : std::nullopt;
    m_item->pictures().setTickInterval(m_interval);
}

void FfmpegMediaPlayer::setEndObserver(std::function<void()> observer) {
    m_endObserver = std::move(observer);
}

void FfmpegMediaPlayer::setPictureObserver(std::function<void()> observer) {
    m_pictureObserver = std::move(observer);
}

/// Calls an observer, which may set another one or let go of the player.
template<class Observer, class... Values>
void FfmpegMediaPlayer::tell(Observer observer, Values... values) {
    if (observer) {
        observer(values...);
    }
}

void FfmpegMediaPlayer::pictureChanged() {
    m_picture = m_item->pictures().take();
    tell(m_pictureObserver);
}

void FfmpegMediaPlayer::tick() {
    m_link->isTickWaiting = false;
    tell(m_timeObserver, currentTime());
}

void FfmpegMediaPlayer::endReached() {
    const auto& end = m_timeline.end();
    if (!m_clock.isMoving() || !end || m_clock.at(hostNow()) < *end) {
        return; // Something else was asked for in the meantime.
    }
    setClock(PlayerClock::standing(*end), false);
    tell(m_endObserver);
}

} // namespace tavi
