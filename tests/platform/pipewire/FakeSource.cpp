#include "platform/pipewire/FakeSource.h"

#include "platform/pipewire/PipeWireTestServer.h"

#include <gtest/gtest.h>

namespace tavi::test {

FakeSource::FakeSource(const pw_stream_events& events, pw_properties* properties) {
    pw_init(nullptr, nullptr);
    m_loop = pw_thread_loop_new("fake-device", nullptr);
    const std::string name = pw_properties_get(properties, PW_KEY_NODE_NAME);
    m_stream = pw_stream_new_simple(loop(), name.c_str(), properties, &events, this);
    EXPECT_NE(m_stream, nullptr) << "no connection";
}

FakeSource::~FakeSource() {
    stop();
    pw_thread_loop_destroy(m_loop);
}

void FakeSource::connect(std::vector<const spa_pod*> formats, pw_stream_flags memory) {
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | memory);
    EXPECT_GE(pw_stream_connect(m_stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, formats.data(),
                                static_cast<std::uint32_t>(formats.size())),
              0);
    pw_thread_loop_start(m_loop);
    EXPECT_TRUE(waitFor([this] {
        pw_thread_loop_lock(m_loop);
        const bool isThere = pw_stream_get_node_id(m_stream) != SPA_ID_INVALID;
        pw_thread_loop_unlock(m_loop);
        return isThere;
    })) << "the device does not appear";
}

void FakeSource::stop() {
    pw_thread_loop_stop(m_loop);
    if (m_stream != nullptr) {
        pw_stream_destroy(m_stream);
        m_stream = nullptr;
    }
}

} // namespace tavi::test
