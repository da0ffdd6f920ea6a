#include "project/PointerLineJson.h"

#include <cstdint>
#include <cstdlib>

/// A line that is taken is a deed of a button or a wheel at a time that is not negative.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto line = tavi::parsePointerLine({reinterpret_cast<const char*>(data), size});
    if (line && (line->hostTime.value < 0 || line->type == tavi::CursorEventType::move ||
                 line->type == tavi::CursorEventType::keyDown)) {
        std::abort();
    }
    return 0;
}
