#include "platform/portal/WaylandSession.h"

#include <cstdlib>
#include <string_view>

namespace tavi {

namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

bool isWaylandSession() {
    return !environment("WAYLAND_DISPLAY").empty() || environment("XDG_SESSION_TYPE") == "wayland";
}

} // namespace tavi
