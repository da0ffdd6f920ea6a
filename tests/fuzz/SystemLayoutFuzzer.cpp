#include "keys/SystemLayout.h"

#include <cstdint>
#include <cstdlib>

/// A keyboard that is read has a layout.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const auto& layout :
         {tavi::layoutFromAssignments(text), tavi::layoutFromServerConfiguration(text)}) {
        if (layout && layout->layout.empty()) {
            std::abort();
        }
    }
    return 0;
}
