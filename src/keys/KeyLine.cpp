#include "keys/KeyLine.h"

#include <array>
#include <cerrno>
#include <unistd.h>

namespace tavi {

std::string keyLine(std::uint32_t time, std::string_view text, std::uint32_t modifiers) {
    std::string line = "{\"t\":" + std::to_string(time) + ",\"c\":\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            line += '\\';
        }
        line += c;
    }
    return line + "\",\"m\":" + std::to_string(modifiers) + "}\n";
}

std::string pointerLine(std::uint64_t time, PointerDeed deed) {
    constexpr std::array<const char*, 4> kNames{"leftMouseDown", "leftMouseUp", "rightClick",
                                                "scroll"};
    return "{\"t\":" + std::to_string(time) + ",\"p\":\"" + kNames[static_cast<std::size_t>(deed)] +
           "\"}\n";
}

bool writeLine(std::string_view line) {
    // Far below PIPE_BUF, so the kernel takes all of it or nothing.
    ssize_t written = -1;
    do {
        written = write(STDOUT_FILENO, line.data(), line.size());
    } while (written < 0 && errno == EINTR);
    return written == static_cast<ssize_t>(line.size());
}

} // namespace tavi
