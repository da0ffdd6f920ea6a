#include "platform/ffmpeg/PictureLoader.h"

#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/HostDeadline.h"

#include <algorithm>
#include <pthread.h>
#include <utility>

namespace tavi {

namespace {

/// Pictures decoded ahead while the item moves: enough to hide an expensive one.
constexpr std::size_t kMostAhead = 4;

/// What starting at a key frame costs, in time of the track: decoders fill up anew.
constexpr MediaTime kJumpCost{1, 10};

/// Without an index key frames are expected to be so close.
constexpr MediaTime kUnknownKeyFrames{5, 1};

/// The file's first picture track; absent where it has none that can be shown.
const VideoTrack* firstTrack(const Asset& asset) {
    const bool has = !asset.videoTracks.empty();
    return has && isReasonable(asset.videoTracks.front().naturalSize) ? &asset.videoTracks.front()
                                                                      : nullptr;
}

} // namespace

PictureLoader::PictureLoader(PlayerItem item, PlayerClock clock, Observer observer)
    : m_item(std::move(item)),
      m_observer(std::move(observer)),
      m_clock(clock),
      m_waitingSince(hostNow()),
      m_thread([this] { run(); }) {}

PictureLoader::~PictureLoader() {
    stop();
    m_thread.join();
}

void PictureLoader::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_wake.notify_all();
}

void PictureLoader::setClock(const PlayerClock& clock, bool isJump) {
    {
        const std::lock_guard lock(m_mutex);
        const MediaTime now = hostNow();
        const bool isServed = !m_isAwaited || m_run.inForce(wanted(now)) != nullptr;
        m_clock = clock;
        m_isGoingBack = m_isGoingBack && !clock.isMoving();
        if (isJump) {
            m_isChased = !isServed;
            m_isAwaited = true;
            m_latest = m_isChased ? m_latest : DecodedPicture{};
            m_waitingSince = m_isChased ? m_waitingSince : now;
            m_hasArrived = false;
        }
    }
    m_wake.notify_all();
}

const AVStream* PictureLoader::stream() const {
    const std::lock_guard lock(m_mutex);
    return m_hasTrack ? &m_decoder->stream() : nullptr;
}

bool PictureLoader::open() {
    int track = -1;
    ItemTimeline timeline;
    if (m_item.delayedTrack) {
        track = m_item.delayedTrack->track.index;
        timeline = ItemTimeline::ofDelayedTrack(*m_item.delayedTrack);
    } else {
        const auto asset = openFfmpegAsset(m_item.path);
        if (!asset) {
            return false;
        }
        const bool isKnown = asset->duration.value > 0;
        timeline = ItemTimeline::ofFile(isKnown ? std::optional(asset->duration) : std::nullopt);
        const VideoTrack* first = firstTrack(*asset);
        track = first != nullptr ? first->index : -1;
    }
    auto decoder = VideoDecoder::open(m_item.path, track, DecoderUse::jumps);
    {
        const std::lock_guard lock(m_mutex);
        m_timeline = timeline;
        m_hasTrack = decoder.has_value();
        m_decoder = decoder ? std::move(*decoder) : nullptr;
    }
    m_observer.opened(timeline);
    return m_decoder != nullptr;
}

void PictureLoader::run() {
    pthread_setname_np(pthread_self(), "player-decode");
    const bool isOpen = open();
    std::unique_lock lock(m_mutex);
    m_isBroken = !isOpen;
    while (!m_isStopping && !m_isBroken) {
        const MediaTime now = hostNow();
        const MediaTime time = wanted(now);
        switch (nextStep(time)) {
        case Step::wait:
            waitForWork(lock, time);
            break;
        case Step::jump:
            jumpTo(lock, time);
            break;
        case Step::goOn:
            decode(lock, time);
            break;
        }
    }
    lock.unlock();
    m_observer.changed();
}

/// The time in the track that is to be shown; its beginning while that lies ahead.
MediaTime PictureLoader::wanted(MediaTime now) const {
    return m_timeline.trackTime(m_timeline.limited(m_clock.at(now))).value_or(MediaTime{});
}

PictureLoader::Step PictureLoader::nextStep(MediaTime time) const {
    if (m_run.inForce(time) != nullptr) {
        const bool isEnough = m_run.isTrackEnd() || m_run.countAfter(time) >= kMostAhead;
        return m_clock.isMoving() && !isEnough ? Step::goOn : Step::wait;
    }
    const bool isBehindRun = !m_run.isEmpty() && m_run.lastTime() <= time;
    return isBehindRun && !isNearerByKeyFrame(time) ? Step::goOn : Step::jump;
}

/// Whether `time`, which lies after the run, is reached sooner by way of a key frame.
bool PictureLoader::isNearerByKeyFrame(MediaTime time) const {
    const MediaTime key = m_decoder->keyFrameBefore(time).value_or(time - kUnknownKeyFrames);
    return key > m_run.lastTime() + kJumpCost && key > m_jumpedTo;
}

/// Sleeps until it is told of something, or a picture less lies ahead.
void PictureLoader::waitForWork(std::unique_lock<std::mutex>& lock, MediaTime time) {
    const DecodedPicture* next = m_run.isTrackEnd() ? nullptr : m_run.after(time);
    if (m_clock.isMoving() && next != nullptr) {
        const MediaTime itemTime = next->time + m_timeline.start();
        m_wake.wait_until(lock, hostDeadline(m_clock.hostTimeOf(itemTime)));
    } else {
        m_wake.wait(lock);
    }
}

void PictureLoader::jumpTo(std::unique_lock<std::mutex>& lock, MediaTime time) {
    m_isGoingBack = !m_clock.isMoving() && !m_run.isEmpty() && time < m_run.firstTime();
    m_jumpedTo = time;
    m_hasArrived = false;
    m_run.restart(false);
    lock.unlock();
    m_decoder->seek(time);
    lock.lock();
    decode(lock, time);
}

/// Adds the next picture to the run.
void PictureLoader::decode(std::unique_lock<std::mutex>& lock, MediaTime time) {
    const bool isHurrying = !m_isGoingBack;
    lock.unlock();
    if (isHurrying) {
        m_decoder->hurryTo(time);
    }
    AVFrame* picture = m_decoder->next();
    lock.lock();
    if (picture != nullptr) {
        take(*picture, time);
    } else {
        endTrack(lock);
    }
    if (isWorthTelling(hostNow())) {
        lock.unlock();
        m_observer.changed();
        lock.lock();
    }
}

/// Whether due() may tell something else since a picture was added.
bool PictureLoader::isWorthTelling(MediaTime now) const {
    const std::size_t ahead = m_run.countAfter(wanted(now));
    const bool isShowable = m_hasArrived || m_run.inForce(wanted(now)) != nullptr;
    return ahead == 1 || m_run.isTrackEnd() || isLenient(now) || (ahead == 0 && isShowable);
}

void PictureLoader::endTrack(std::unique_lock<std::mutex>& lock) {
    m_isBroken = m_run.isEmpty();
    m_run.endTrack();
    if (!m_isBroken && !m_timeline.end()) {
        m_timeline = ItemTimeline::ofFile(m_run.lastTime());
        lock.unlock();
        m_observer.opened(m_timeline);
        lock.lock();
    }
}

void PictureLoader::take(AVFrame& picture, MediaTime wantedTime) {
    const MediaTime time = m_decoder->time();
    const auto left = m_decoder->lastHurriedOver();
    if (m_run.isEmpty()) {
        m_run.restart(time > m_jumpedTo);
    } else if (time <= m_run.lastTime()) {
        return; // Out of order in a damaged file.
    } else if (left && *left > m_run.lastTime()) {
        m_run.restart(false);
    }
    AVFrame* kept = av_frame_alloc();
    av_frame_move_ref(kept, &picture);
    m_latest = {time, std::shared_ptr<AVFrame>(kept, FreeFrame()), m_decoder->timeOfNext()};
    m_run.append(m_latest, wantedTime);
}

bool PictureLoader::isLenient(MediaTime now) const {
    return (m_isChased && now - m_waitingSince > kChasePace) ||
           (m_clock.isMoving() && now - m_waitingSince > kPatience);
}

DuePicture PictureLoader::due(MediaTime now) {
    const std::lock_guard lock(m_mutex);
    if (m_isBroken) {
        return {DuePicture::Kind::nothing, nullptr, std::nullopt};
    }
    if (!m_hasTrack) {
        return {};
    }
    const auto time = m_timeline.trackTime(m_timeline.limited(m_clock.at(now)));
    const auto hostOf = [this](MediaTime trackTime) {
        return m_clock.isMoving()
                   ? std::optional(m_clock.hostTimeOf(trackTime + m_timeline.start()))
                   : std::nullopt;
    };
    if (!time) {
        m_isAwaited = false;
        m_shownTime.reset();
        return {DuePicture::Kind::nothing, nullptr, hostOf({})};
    }
    const DecodedPicture* picture = shown(*time, now);
    if (picture == nullptr) {
        return {};
    }
    const DecodedPicture* next = m_run.after(*time);
    return {DuePicture::Kind::picture, picture->frame,
            next != nullptr ? hostOf(next->time) : std::nullopt};
}

const DecodedPicture* PictureLoader::shown(MediaTime trackTime, MediaTime now) {
    const DecodedPicture* picture = m_run.inForce(trackTime);
    const bool isInForce = picture != nullptr;
    const bool isLate = !isInForce && isLenient(now);
    if (isInForce) {
        m_hasArrived = true;
        m_isChased = false;
    } else if (m_isChased) {
        picture = isLate ? nearerThanShown(trackTime) : nullptr;
    } else if (m_hasArrived || isLate) {
        picture = latestUnlessBack(trackTime);
    }
    if (picture != nullptr) {
        m_waitingSince = isInForce || isLate ? now : m_waitingSince;
        m_isAwaited = m_isChased;
        m_shownTime = picture->time;
    }
    return picture;
}

/// The latest picture at or before `trackTime`. Null when that would be a step back from what the
/// last jump led to: pictures are decoded anew from a key frame before it when one that is
/// decoded, but not yet shown, at `trackTime` was taken for the nearer way there.
const DecodedPicture* PictureLoader::latestUnlessBack(MediaTime trackTime) const {
    const DecodedPicture* picture = m_run.latest(trackTime);
    const bool isBack = picture != nullptr && m_shownTime && picture->time < *m_shownTime;
    return isBack && !m_isAwaited ? nullptr : picture;
}

/// The picture decoded last, unless what is shown is as near to `trackTime`; while it moves none
/// before its time.
const DecodedPicture* PictureLoader::nearerThanShown(MediaTime trackTime) const {
    const auto distance = [trackTime](MediaTime time) {
        return std::max(time, trackTime) - std::min(time, trackTime);
    };
    const bool isNearer = !m_shownTime || distance(m_latest.time) < distance(*m_shownTime);
    const bool isEarly = m_clock.isMoving() && m_latest.time > trackTime;
    return isNearer && !isEarly && m_latest.frame ? &m_latest : nullptr;
}

} // namespace tavi
