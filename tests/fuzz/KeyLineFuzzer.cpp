#include "project/KeyLineJson.h"

#include <cstdint>
#include <cstdlib>

/// A line that is taken holds a text, and a longer object around it changes nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view line(reinterpret_cast<const char*>(data), size);
    const auto key = tavi::parseKeyLine(line);
    if (key && tavi::parseKeyLine(std::string(line) + "\n") != key) {
        std::abort();
    }
    return 0;
}
