#pragma once

#include "capture/Pointer.h"

#include <optional>
#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>

namespace tavi {

/// What a buffer tells of the pointer.
struct CastCursor {
    bool isThere = false; ///< Over what is cast, and visible.
    int x = 0;            ///< Pixels of the buffer, from its top left corner.
    int y = 0;
    std::optional<SystemCursor> image; ///< Only where there is a new one.
};

/// Absent where the buffer tells nothing. Sizes and offsets are the other side's: what
/// would lie outside the metadata is left out.
std::optional<CastCursor> readCastCursor(const spa_buffer& buffer);

} // namespace tavi
