#include "platform/ffmpeg/FfmpegVideoInput.h"

#include "platform/ffmpeg/AlphaPlane.h"
#include "platform/ffmpeg/FfmpegErrors.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <utility>

namespace tavi {

namespace {

/// Memory that a queue may hold; it decides how long a hiccup of the encoder a
/// live source can sit out.
constexpr std::size_t kQueueBytes = std::size_t{96} << 20;
constexpr std::size_t kShortestQueue = 3;
constexpr std::size_t kLongestQueue = 12;

/// What a live source may have inside the encoder and in front of it, in time that its encoding
/// will take at the pace of late: whoever stops a take waits for that. On a
/// busy machine pictures are dropped sooner.
constexpr std::chrono::milliseconds kLongestQueueTime{600};

/// How much of the pace is that of the last picture.
constexpr int kPaceShare = 4;

/// Until the pace is known: a slow machine's for a picture of 1920x1080, in proportion less for
/// smaller ones.
constexpr std::chrono::microseconds kFirstPace{100'000};
constexpr std::int64_t kFirstPacePixels = 1920 * 1080;

/// Offline there is nothing to sit out: enough that the two sides overlap.
constexpr std::size_t kOfflineQueue = 3;

/// Pictures that have not moved for so long hold no other input back.
constexpr std::chrono::seconds kStalled{2};

/// How often a standing picture is looked at for being due on the disk.
constexpr std::chrono::milliseconds kFlushCheck{200};

/// Pictures that callers draw into: the next one, and one that others still look at.
constexpr std::size_t kMostKept = 2;

const char* trackName(const VideoEncoder& encoder) {
    return encoder.content() == PictureContent::alpha ? kAlphaTrackName : nullptr;
}

std::size_t queueCapacity(const VideoSettings& settings) {
    if (!settings.realTime) {
        return kOfflineQueue;
    }
    const std::size_t bytes = static_cast<std::size_t>(settings.width) *
                              static_cast<std::size_t>(settings.height) * 3 / 2; // of 4:2:0
    return std::clamp(kQueueBytes / std::max<std::size_t>(bytes, 1), kShortestQueue, kLongestQueue);
}

std::chrono::microseconds firstPace(const VideoSettings& settings) {
    const std::int64_t pixels = std::int64_t{settings.width} * settings.height;
    return kFirstPace * std::min(pixels, kFirstPacePixels) / kFirstPacePixels;
}

} // namespace

FfmpegVideoInput::FfmpegVideoInput(const VideoSettings& settings,
                                   std::unique_ptr<VideoEncoder> encoder, MovieFile& file,
                                   int timescale, WriterState& state, std::filesystem::path target)
    : m_settings(settings),
      m_encoder(std::move(encoder)),
      m_file(file),
      m_timescale(timescale),
      m_state(state),
      m_target(std::move(target)),
      m_track(
          file.addTrack(m_encoder->context(), settings.expectedFrameRate, trackName(*m_encoder))),
      m_capacity(queueCapacity(settings)),
      m_pool(settings.width, settings.height, kMostKept),
      m_pictureTime(firstPace(settings)) {}

FfmpegVideoInput::~FfmpegVideoInput() {
    stop();
}

/// Whether what waits and one more picture are encoded soon enough; an encoder that has nothing to
/// do always gets one. The picture inside may take as long again as it did so far; that those
/// behind it will be as slow isn't said, or every hiccup of a busy machine would lose pictures for
/// which there is room.
bool FfmpegVideoInput::isInTime() const {
    if (!m_settings.realTime || (m_queue.empty() && !m_encodingSince)) {
        return true;
    }
    Clock::duration left = m_pictureTime * (static_cast<int>(m_queue.size()) + 1);
    if (m_encodingSince) {
        left += std::max<Clock::duration>(m_pictureTime, Clock::now() - *m_encodingSince);
    }
    return left <= Clock::duration(kLongestQueueTime);
}

bool FfmpegVideoInput::hasRoom() const {
    return m_state.isWriting() && !m_isFinished && m_queue.size() < m_capacity;
}

bool FfmpegVideoInput::isReadyForMoreMediaData() const {
    const std::lock_guard lock(m_mutex);
    return hasRoom() && isInTime();
}

bool FfmpegVideoInput::takesPictureAt(MediaTime time) const {
    const std::lock_guard lock(m_mutex);
    return hasRoom() && m_sessionStart && time >= *m_sessionStart &&
           !(m_lastTime && time <= *m_lastTime);
}

/// The queue holds pictures as the encoder takes them, which are less than half as
/// large as those that come, and those are free for the next at once.
bool FfmpegVideoInput::append(PixelBufferPtr image, MediaTime time) {
    const bool isOfSize =
        image && image->width() == m_settings.width && image->height() == m_settings.height;
    if (!isOfSize || !takesPictureAt(time)) {
        return false;
    }
    FrameHandle picture = m_encoder->convert(*image);
    if (!picture) {
        checkEncode(AVERROR(ENOMEM));
        return false;
    }
    if (lastsOn(picture, time)) {
        return true;
    }
    m_last = std::move(picture);
    return enqueueLast(time);
}

/// Whether the alpha is what it was: then the track needs no picture, and the encoder is not
/// troubled.
bool FfmpegVideoInput::lastsOn(const FrameHandle& picture, MediaTime time) {
    if (m_encoder->content() != PictureContent::alpha || !m_last ||
        !isSameAlpha(*m_last, *picture)) {
        return false;
    }
    const std::lock_guard lock(m_mutex);
    m_lastTime = time;
    m_lastAppend = Clock::now();
    return true;
}

bool FfmpegVideoInput::appendRepeat(MediaTime time) {
    return m_last && takesPictureAt(time) && enqueueLast(time);
}

/// Only the appending thread fills the queue: what had room still has it.
bool FfmpegVideoInput::enqueueLast(MediaTime time) {
    FrameHandle frame(av_frame_clone(m_last.get()));
    if (!frame) {
        checkEncode(AVERROR(ENOMEM));
        return false;
    }
    {
        const std::lock_guard lock(m_mutex);
        // Two times that fall on one tick stay two pictures in order.
        const std::int64_t ticks = (time - *m_sessionStart).rescaled(m_timescale).value;
        m_lastTicks = std::max(ticks, m_lastTicks + 1);
        m_lastTime = time;
        m_lastAppend = Clock::now();
        m_queue.push_back({std::move(frame), m_lastTicks});
    }
    m_changed.notify_all();
    return true;
}

void FfmpegVideoInput::markAsFinished() {
    {
        const std::lock_guard lock(m_mutex);
        m_isFinished = true;
    }
    m_changed.notify_all();
}

std::shared_ptr<PixelBuffer> FfmpegVideoInput::makePixelBuffer() {
    return m_state.isWriting() ? m_pool.make() : nullptr;
}

void FfmpegVideoInput::begin() {
    m_thread = std::thread([this] { run(); });
}

void FfmpegVideoInput::setSessionStart(MediaTime time) {
    const std::lock_guard lock(m_mutex);
    m_sessionStart = time;
}

std::optional<double> FfmpegVideoInput::appendedSeconds() const {
    const std::lock_guard lock(m_mutex);
    const bool isStalled = Clock::now() - m_lastAppend > kStalled;
    if (m_isFinished || m_isStopped || isStalled) {
        return std::nullopt;
    }
    return m_lastTime ? (*m_lastTime - *m_sessionStart).seconds() : 0;
}

void FfmpegVideoInput::drain() {
    markAsFinished();
    join();
}

void FfmpegVideoInput::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_isStopped = true;
        m_queue.clear();
    }
    m_changed.notify_all();
    join();
}

void FfmpegVideoInput::join() {
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

/// False at the end of the track.
bool FfmpegVideoInput::waitForPicture(Picture& picture) {
    std::unique_lock lock(m_mutex);
    const auto somethingToDo = [this] { return !m_queue.empty() || m_isFinished || m_isStopped; };
    while (!m_changed.wait_for(lock, kFlushCheck, somethingToDo)) {
        lock.unlock();
        checkWrite(m_file.flushIfDue());
        lock.lock();
    }
    if (m_isStopped || m_queue.empty()) {
        return false;
    }
    picture = std::move(m_queue.front());
    m_queue.pop_front();
    m_encodingSince = Clock::now();
    return true;
}

void FfmpegVideoInput::encode(Picture& picture, const VideoEncoder::Sink& sink) {
    checkEncode(m_encoder->encode(*picture.frame, picture.ticks, sink));
    const std::lock_guard lock(m_mutex);
    m_pictureTime += (Clock::now() - *m_encodingSince - m_pictureTime) / kPaceShare;
    m_encodingSince.reset();
}

void FfmpegVideoInput::run() {
    const VideoEncoder::Sink sink = [this](AVPacket& packet) {
        return checkWrite(m_file.write(m_track, packet));
    };
    Picture picture;
    while (waitForPicture(picture)) {
        if (m_state.isWriting()) {
            encode(picture, sink);
        }
        picture.frame.reset();
    }
    if (m_state.isWriting()) {
        checkEncode(m_encoder->drain(sink));
    }
}

/// Turns a failed write into the writer's failure; returns the code.
int FfmpegVideoInput::checkWrite(int code) {
    if (code < 0 && m_state.isWriting()) {
        m_state.fail(writeError(m_target, code));
    }
    return code;
}

/// The same for the encoder; a write that failed inside it was noted before.
void FfmpegVideoInput::checkEncode(int code) {
    if (code < 0 && m_state.isWriting()) {
        m_state.fail(mediaError(MediaError::Kind::cannotEncode, m_target,
                                m_encoder->name() + ": " + ffmpegReason(code)));
    }
}

} // namespace tavi
