#pragma once

#include "media/PlayerClock.h"
#include "media/SoundFeed.h"
#include "platform/ffmpeg/AudioDecoder.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace tavi {

/// Plays the first track of sound of a file, decoded ahead on a thread of its own.
///
/// Sound is heard at the host times that the item's clock gives it; at other rates than 1 there
/// is none. A file without sound is silent.
/// Threads: the controlling thread, which never waits for decoding or for the device. The
/// destructor joins.
class SoundLoader {
public:
    /// `outputs` outlives the loader.
    SoundLoader(std::filesystem::path path, SoundOutputs& outputs);
    ~SoundLoader();
    SoundLoader(const SoundLoader&) = delete;
    SoundLoader& operator=(const SoundLoader&) = delete;

    /// How the item moves from now on.
    void setClock(const PlayerClock& clock);

    /// Silence, and the thread ends, soon.
    void stop();

private:
    using Lock = std::unique_lock<std::mutex>;

    void run(SoundOutputs& outputs);
    bool open();
    void play(Lock& lock);
    void beginRun(MediaTime from, MediaTime host);
    bool writeNext();
    bool writeSilence();
    void place(const SoundPiece& piece);

    const std::filesystem::path m_path;
    const std::shared_ptr<SoundFeed> m_feed = std::make_shared<SoundFeed>();

    // The thread's.
    std::unique_ptr<AudioDecoder> m_decoder;
    std::int64_t m_next = 0;      ///< On the track's timeline, in moments: what is written next.
    bool m_isAtEnd = false;       ///< Of the track.
    std::int64_t m_silence = 0;   ///< Moments of it before m_waiting.
    std::vector<float> m_waiting; ///< Decoded.

    std::mutex m_mutex;
    std::condition_variable m_wake;
    // All below by the mutex.
    bool m_isStopping = false;
    PlayerClock m_clock;
    bool m_isNewClock = false;

    std::thread m_thread;
};

} // namespace tavi
