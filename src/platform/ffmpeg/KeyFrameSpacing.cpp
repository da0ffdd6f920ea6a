#include "platform/ffmpeg/KeyFrameSpacing.h"

#include <algorithm>

namespace tavi {

namespace {

/// What a picture costs to decode besides its bits, in bits for each pixel: libavcodec's HEVC
/// decoder takes 10 ms for a megabit and 1.5 ms for a picture of 1920x1080 without any.
constexpr double kBitsPerPixel = 0.07;

/// What may follow a key frame, in bits for each pixel: 50 ms of one core at 1920x1080.
constexpr double kMostBitsPerPixel = 2.3;

/// What may follow a key frame at least, as a multiple of it: so key frames are at most two fifths
/// of what is decoded.
constexpr double kKeyFramesShare = 1.5;

} // namespace

KeyFrameSpacing::KeyFrameSpacing(int width, int height)
    : m_pictureCost(kBitsPerPixel * width * height),
      m_mostCost(kMostBitsPerPixel * width * height) {}

bool KeyFrameSpacing::isDue() const {
    return m_cost > std::max(m_mostCost, kKeyFramesShare * m_keyCost);
}

void KeyFrameSpacing::add(std::int64_t bytes, bool isKeyFrame) {
    const double cost = m_pictureCost + 8.0 * static_cast<double>(bytes);
    m_keyCost = isKeyFrame ? cost : m_keyCost;
    m_cost = isKeyFrame ? 0 : m_cost + cost;
}

} // namespace tavi
