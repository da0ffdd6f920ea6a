#include "takes/PointerWatch.h"

#include "takes/Flasher.h"

#include <chrono>
#include <cstdlib>

namespace tavi::test {

PointerWatch::PointerWatch(const XTestServer& screen)
    : m_client(screen),
      m_thread([this] { run(); }) {}

PointerWatch::~PointerWatch() {
    stop();
}

std::vector<PointerStay> PointerWatch::stop() {
    m_isStopped = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
    return m_stays;
}

void PointerWatch::run() {
    xcb_connection_t* connection = m_client.connection();
    while (!m_isStopped) {
        const auto cookie = xcb_query_pointer(connection, m_client.root());
        if (xcb_query_pointer_reply_t* at = xcb_query_pointer_reply(connection, cookie, nullptr)) {
            if (m_stays.empty() || m_stays.back().x != at->root_x ||
                m_stays.back().y != at->root_y) {
                m_stays.push_back({hostSeconds(), at->root_x, at->root_y});
            }
            std::free(at);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace tavi::test
