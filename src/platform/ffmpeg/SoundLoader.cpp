#include "platform/ffmpeg/SoundLoader.h"

#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/HostDeadline.h"

#include <algorithm>
#include <array>
#include <pthread.h>
#include <utility>

namespace tavi {

namespace {

/// How long the thread sleeps while the feed is full: it holds four times as much.
constexpr std::chrono::milliseconds kNap{150};

/// How long the device is kept after the sound's end: one that is started again at once has no gap,
/// and what fades can be heard.
constexpr std::chrono::milliseconds kLinger{300};

/// A run that should have begun already is taken up so much after now: what is decoded meanwhile
/// would be missed.
constexpr MediaTime kHeadStart{3, 100};

/// Silence is written in pieces of at most so many moments.
constexpr std::int64_t kSilence = 1024;

} // namespace

SoundLoader::SoundLoader(std::filesystem::path path, SoundOutputs& outputs)
    : m_path(std::move(path)),
      m_thread([this, &outputs] { run(outputs); }) {}

SoundLoader::~SoundLoader() {
    stop();
    m_thread.join();
}

void SoundLoader::setClock(const PlayerClock& clock) {
    {
        const std::lock_guard lock(m_mutex);
        m_clock = clock;
        m_isNewClock = true;
    }
    m_wake.notify_all();
}

void SoundLoader::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_wake.notify_all();
}

bool SoundLoader::open() {
    const auto asset = openFfmpegAsset(m_path);
    if (!asset || asset->audioTracks.empty()) {
        return false;
    }
    auto decoder =
        AudioDecoder::open(m_path, asset->audioTracks.front().index, kPlayedRate, kPlayedChannels);
    m_decoder = decoder ? std::move(*decoder) : nullptr;
    return m_decoder != nullptr;
}

void SoundLoader::run(SoundOutputs& outputs) {
    pthread_setname_np(pthread_self(), "player-sound");
    if (!open()) {
        return;
    }
    const std::unique_ptr<SoundOutput> output = outputs.open(m_feed);
    Lock lock(m_mutex);
    while (!m_isStopping) {
        if (m_clock.isMoving() && m_clock.rate == 1) {
            output->start();
            play(lock);
        } else {
            m_isNewClock = false;
            m_feed->end();
            const auto isWanted = [this] { return m_isNewClock || m_isStopping; };
            if (!m_wake.wait_for(lock, kLinger, isWanted)) {
                output->stop();
                m_wake.wait(lock, isWanted);
            }
        }
    }
    m_feed->end();
}

/// Keeps the feed full until the clock is another one.
void SoundLoader::play(Lock& lock) {
    m_isNewClock = false;
    const PlayerClock clock = m_clock;
    const auto isDone = [this] { return m_isNewClock || m_isStopping; };
    lock.unlock();
    const MediaTime host = std::max(clock.hostTime, hostNow() + kHeadStart);
    beginRun(clock.at(host), host);
    lock.lock();
    while (!isDone()) {
        lock.unlock();
        const bool isFull = !writeNext();
        lock.lock();
        if (isFull) {
            m_wake.wait_for(lock, kNap, isDone);
        }
    }
}

/// What is at `from` in the track is heard at `host`.
void SoundLoader::beginRun(MediaTime from, MediaTime host) {
    m_feed->begin(host.rescaled(MediaTime::kNanoseconds).value);
    m_next = from.rescaled(kPlayedRate).value;
    m_silence = 0;
    m_waiting.clear();
    m_isAtEnd = false;
    m_decoder->seek(from);
}

/// Moves on by one step; false when there is nothing to do for a while.
bool SoundLoader::writeNext() {
    if (m_silence > 0) {
        return writeSilence();
    }
    if (m_waiting.empty()) {
        const auto piece = m_isAtEnd ? std::nullopt : m_decoder->next();
        m_isAtEnd = !piece;
        if (piece) {
            place(*piece);
        }
        return piece.has_value();
    }
    const std::size_t taken = m_feed->write(m_waiting);
    m_next += static_cast<std::int64_t>(taken);
    m_waiting.erase(m_waiting.begin(),
                    m_waiting.begin() + static_cast<std::ptrdiff_t>(taken * kPlayedChannels));
    return taken > 0;
}

bool SoundLoader::writeSilence() {
    static constexpr std::array<float, kSilence * kPlayedChannels> kZeros{};
    const auto frames = static_cast<std::size_t>(std::min(m_silence, kSilence));
    const std::size_t taken = m_feed->write(std::span(kZeros).first(frames * kPlayedChannels));
    m_next += static_cast<std::int64_t>(taken);
    m_silence -= static_cast<std::int64_t>(taken);
    return taken > 0;
}

/// Makes a decoded piece what is written next: what was written already is cut
/// off, a gap before it is silent.
void SoundLoader::place(const SoundPiece& piece) {
    const std::int64_t gap = piece.position - m_next;
    const auto frames = static_cast<std::int64_t>(piece.samples.size()) / kPlayedChannels;
    const bool isSeamless = std::abs(gap) <= m_decoder->rounding();
    if (isSeamless || gap > 0) {
        m_silence = isSeamless ? 0 : gap;
        m_waiting = piece.samples;
    } else if (-gap < frames) {
        m_waiting.assign(piece.samples.begin() - gap * kPlayedChannels, piece.samples.end());
    }
}

} // namespace tavi
