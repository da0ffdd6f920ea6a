#pragma once

namespace tavi {

/// The shortest side, in pixels, of pictures that can be encoded: libx265, which is always there,
/// takes none that are smaller than its smallest block.
inline constexpr int kSmallestVideoSide = 16;

} // namespace tavi
