#include "platform/ffmpeg/MovieHeader.h"

#include <algorithm>
#include <cstdint>

/// Any bytes end the scan, without a read outside of them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto read = [&](std::uint64_t offset, std::span<std::uint8_t> bytes) {
        if (offset > size || bytes.size() > size - offset) {
            return false;
        }
        std::copy_n(data + offset, bytes.size(), bytes.begin());
        return true;
    };
    tavi::parseMovieHeader(read, size);
    return 0;
}
