#include "project/EditProjectJson.h"

#include <cstdint>
#include <cstdlib>

/// What decodes must encode, and decode again to the same record.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto record = tavi::decodeEditProject({reinterpret_cast<const char*>(data), size});
    if (!record) {
        return 0;
    }
    const auto text = tavi::encodeEditProject(*record);
    if (!text || tavi::decodeEditProject(*text) != record) {
        std::abort();
    }
    return 0;
}
