#pragma once

#include <cstdint>

namespace tavi {

/// Decides when a recording has its next key frame: before going to a picture would cost
/// much more than the key frame itself.
///
/// Going to a picture decodes all from the key frame before it on. What that costs grows with the
/// number of pictures and with their bits, so a busy screen gets key frames closer than a
/// calm one, which is recorded with fewer bits and less work that way (docs/encoding.md).
/// Thread: one at a time.
class KeyFrameSpacing {
public:
    KeyFrameSpacing(int width, int height);

    /// Whether the next picture should be a key frame.
    bool isDue() const;

    /// An encoded picture, in the order of decoding.
    void add(std::int64_t bytes, bool isKeyFrame);

private:
    double m_pictureCost; ///< In bits, besides a picture's own.
    double m_mostCost;    ///< Of all pictures after a key frame, in bits.
    double m_keyCost = 0; ///< Of the last key frame.
    double m_cost = 0;    ///< Of all pictures after it.
};

} // namespace tavi
