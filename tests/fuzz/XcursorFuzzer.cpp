#include "platform/x11/XcursorFile.h"

#include <cstdint>
#include <cstdlib>

/// A cursor that is read has a picture.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto cursor = tavi::readXcursor({data, size}, 24);
    if (cursor && cursor->image.empty()) {
        std::abort();
    }
    return 0;
}
