#pragma once

#include <cstdint>
#include <pipewire/stream.h>

namespace tavi {

/// Has a stream begin again whose new buffers stay without a picture.
///
/// A compositor that is quicker than this process may send a picture before the stream has its
/// buffers. The library keeps that one until the next comes: where nothing moves any more, never.
/// Compositors send what there is to see whenever a stream begins. One that has nothing is not
/// asked for ever. Threads: the loop's.
class SilentStart {
public:
    explicit SilentStart(pw_loop& loop);
    ~SilentStart();
    SilentStart(const SilentStart&) = delete;
    SilentStart& operator=(const SilentStart&) = delete;

    /// The stream got a new buffer.
    void watch(pw_stream& stream);
    void pictureCame();
    /// The stream goes.
    void stop();

private:
    static void ring(void* data, std::uint64_t);

    void wakeAfter(std::int64_t nanoseconds);
    void beginAgain();

    pw_loop& m_loop;
    spa_source* m_timer;
    pw_stream* m_stream = nullptr; ///< Null where nothing is waited for.
    bool m_isStopped = false;
    int m_beginnings = 0;
};

} // namespace tavi
