#pragma once

#include <pipewire/pipewire.h>
#include <vector>

namespace tavi::test {

/// A source of the test's own on the daemon, on a thread of its own; unplugged at the end.
///
/// It drives its part of the graph as a device does: whoever only follows would, beside a
/// camera, be asked for sound at the camera's pace, and be heard for two thirds of the time.
class FakeSource {
protected:
    FakeSource(const pw_stream_events& events, pw_properties* properties);
    ~FakeSource();
    FakeSource(const FakeSource&) = delete;
    FakeSource& operator=(const FakeSource&) = delete;

    void connect(std::vector<const spa_pod*> formats,
                 pw_stream_flags memory = PW_STREAM_FLAG_MAP_BUFFERS);
    void stop(); ///< No callback comes any more.
    pw_loop* loop() const { return pw_thread_loop_get_loop(m_loop); }

    pw_thread_loop* m_loop;
    pw_stream* m_stream = nullptr;
};

} // namespace tavi::test
