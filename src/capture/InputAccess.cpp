#include "capture/InputAccess.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace tavi {

namespace {

constexpr const char* kUsual = "sudo usermod -aG input \"$USER\"";
/// Systems that are images keep their groups apart, where usermod doesn't look.
constexpr const char* kImage = "grep '^input:' /usr/lib/group | sudo tee -a /etc/group && "
                               "sudo usermod -aG input \"$USER\"";
constexpr const char* kBusyBox = "doas addgroup \"$USER\" input";
constexpr const char* kNixOs = "users.users.<your name>.extraGroups = [ \"input\" ];";

/// The value of a variable of an os-release file, without its quotes; empty when it isn't there.
std::string_view valueOf(std::string_view osRelease, std::string_view name) {
    while (!osRelease.empty()) {
        const std::size_t end = std::min(osRelease.find('\n'), osRelease.size());
        std::string_view line = osRelease.substr(0, end);
        osRelease.remove_prefix(std::min(end + 1, osRelease.size()));
        if (line.size() <= name.size() || !line.starts_with(name) || line[name.size()] != '=') {
            continue;
        }
        line.remove_prefix(name.size() + 1);
        const bool isQuoted = line.size() >= 2 && (line.front() == '"' || line.front() == '\'') &&
                              line.back() == line.front();
        return isQuoted ? line.substr(1, line.size() - 2) : line;
    }
    return {};
}

} // namespace

std::string InputAccessAdvice::description() const {
    return isSetting
               ? "Add " + command + " to the system's configuration, rebuild it and log in again"
               : "Run " + command + " in a terminal, then log out and in again";
}

InputAccessAdvice inputAccessAdvice(std::string_view osRelease) {
    const std::string_view id = valueOf(osRelease, "ID");
    if (id == "nixos") {
        return {kNixOs, true};
    }
    if (id == "alpine" || id == "postmarketos") {
        return {kBusyBox, false};
    }
    return {valueOf(osRelease, "OSTREE_VERSION").empty() ? kUsual : kImage, false};
}

InputAccessAdvice inputAccessAdvice() {
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
        if (std::ifstream file(path); file) {
            return inputAccessAdvice(std::string(std::istreambuf_iterator<char>(file), {}));
        }
    }
    return inputAccessAdvice("");
}

} // namespace tavi
