#include "platform/x11/XConnection.h"

#include <map>
#include <mutex>

namespace tavi {

namespace {

std::string serverName(const std::string& displayName) {
    const char* variable = std::getenv("DISPLAY");
    return displayName.empty() && variable != nullptr ? variable : displayName;
}

CaptureError cannotConnect(const std::string& displayName) {
    const std::string tried = serverName(displayName);
    return {CaptureError::Kind::noWindowSystem,
            tried.empty() ? "DISPLAY is not set" : "nothing answers at display " + tried};
}

const xcb_screen_t* screenNumber(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0 && number > 0; --number) {
        xcb_screen_next(&screens);
    }
    return screens.rem > 0 ? screens.data : nullptr;
}

/// What others hold of the server, or `height` if there is none. Any thread.
std::shared_ptr<const int> globalZero(const std::string& server, int height) {
    static std::mutex mutex;
    static std::map<std::string, std::weak_ptr<const int>> zeros;
    const std::lock_guard lock(mutex);
    std::weak_ptr<const int>& known = zeros[server];
    auto zero = known.lock();
    if (!zero) {
        known = zero = std::make_shared<const int>(height);
    }
    return zero;
}

} // namespace

Result<XConnection, CaptureError> XConnection::open(const std::string& displayName) {
    int number = 0;
    xcb_connection_t* raw =
        xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), &number);
    XConnection connection(raw);
    if (connection.isBroken()) {
        return fail(cannotConnect(displayName));
    }
    connection.m_screen = screenNumber(raw, number);
    if (connection.m_screen == nullptr) {
        return fail(cannotConnect(displayName));
    }
    connection.m_globalZero =
        globalZero(serverName(displayName), connection.screen().height_in_pixels);
    return connection;
}

Result<const xcb_query_extension_reply_t*, CaptureError>
XConnection::require(xcb_extension_t& extension, const std::string& name) const {
    const auto* data = xcb_get_extension_data(get(), &extension);
    if (data == nullptr || data->present == 0) {
        return fail(CaptureError{CaptureError::Kind::missingExtension, name});
    }
    return data;
}

Rect XConnection::toGlobal(const PixelRect& rect) const {
    const double bottom = *m_globalZero - rect.y - rect.height;
    return {static_cast<double>(rect.x), bottom, static_cast<double>(rect.width),
            static_cast<double>(rect.height)};
}

Point XConnection::toGlobal(int x, int y) const {
    return {static_cast<double>(x), static_cast<double>(*m_globalZero - y)};
}

} // namespace tavi
