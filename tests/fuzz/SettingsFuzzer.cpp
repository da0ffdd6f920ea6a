#include "project/AppSettingsJson.h"

#include <cstdint>
#include <cstdlib>

/// What decodes must encode, and decode again to the same record.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto record = tavi::decodeAppSettings({reinterpret_cast<const char*>(data), size});
    if (!record) {
        return 0;
    }
    const auto text = tavi::encodeAppSettings(*record);
    if (!text || tavi::decodeAppSettings(*text) != record) {
        std::abort();
    }
    return 0;
}
