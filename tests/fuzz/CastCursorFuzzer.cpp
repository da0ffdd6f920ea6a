#include "capture/CursorImageBytes.h"
#include "platform/portal/CastCursor.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

/// The bytes are the pointer's metadata in a buffer. A pointer's image that is read is one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::uint8_t> bytes(data, data + size);
    spa_meta meta{};
    meta.type = SPA_META_Cursor;
    meta.size = static_cast<std::uint32_t>(size);
    meta.data = bytes.data();
    spa_buffer buffer{};
    buffer.n_metas = 1;
    buffer.metas = &meta;
    const auto cursor = tavi::readCastCursor(buffer);
    if (cursor && cursor->image && !tavi::cursorImageFromBytes(cursor->image->imageBytes)) {
        std::abort();
    }
    return 0;
}
