#include "render/Resampler.h"

#include "render/RenderGeometry.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace tavi {

namespace {

constexpr int kChannels = PixelBuffer::kBytesPerPixel;

/// Bits that values between the two passes have beyond 8: a whole pixel is
/// 255 * 64, which leaves no visible rounding and fits 14 bits.
constexpr int kExtraBits = 6;
constexpr int kFirstShift = AxisTaps::kBits - kExtraBits;
constexpr std::uint32_t kFirstHalf = 1U << (kFirstShift - 1);
constexpr int kSecondShift = AxisTaps::kBits + kExtraBits;
constexpr std::uint32_t kSecondHalf = 1U << (kSecondShift - 1);

} // namespace

void Resampler::begin(ConstImageView source, const Rect& sourceRect, const Rect& targetRect,
                      const PixelBounds& pixels) {
    assert(!source.empty() && hasArea(sourceRect) && hasArea(targetRect));
    m_source = source;
    m_pixels = pixels;
    m_columns.assign({sourceRect.x, sourceRect.width, targetRect.x, targetRect.width, source.width},
                     pixels.left, pixels.right);
    m_rows.assign({sourceRect.y, sourceRect.height, targetRect.y, targetRect.height, source.height},
                  pixels.top, pixels.bottom);
    m_copyColumn = m_columns.copiedFrom();
    const auto width = static_cast<std::size_t>(std::max(0, pixels.width()));
    m_ringStride = width * kChannels;
    m_ring.resize(m_ringStride * static_cast<std::size_t>(m_rows.count));
    m_ringRow.assign(static_cast<std::size_t>(m_rows.count), -1);
    m_sums.resize(m_ringStride);
}

void Resampler::writeRow(int y, int left, int right, std::uint8_t* out) {
    assert(y >= m_pixels.top && y < m_pixels.bottom && left >= m_pixels.left &&
           right <= m_pixels.right);
    if (right <= left) {
        return;
    }
    const int first = m_rows.firstOf(y);
    const std::int16_t* weights = m_rows.weightsOf(y);
    const auto whole = std::find(weights, weights + m_rows.count, AxisTaps::kOne);
    if (m_copyColumn && whole != weights + m_rows.count) {
        const int column = *m_copyColumn + left - m_pixels.left;
        const std::uint8_t* in = m_source.row(first + static_cast<int>(whole - weights));
        std::memcpy(out, in + static_cast<std::ptrdiff_t>(column) * kChannels,
                    static_cast<std::size_t>(right - left) * kChannels);
        return;
    }
    const auto begin = static_cast<std::size_t>(left - m_pixels.left) * kChannels;
    const auto count = static_cast<std::size_t>(right - left) * kChannels;
    std::uint32_t* sums = m_sums.data();
    std::fill_n(sums, count, kSecondHalf);
    for (int tap = 0; tap < m_rows.count; ++tap) {
        if (weights[tap] == 0) {
            continue;
        }
        const auto weight = static_cast<std::uint32_t>(weights[tap]);
        const std::uint16_t* row = horizontalRow(first + tap) + begin;
        for (std::size_t i = 0; i < count; ++i) {
            sums[i] += row[i] * weight;
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<std::uint8_t>(sums[i] >> kSecondShift);
    }
}

const std::uint16_t* Resampler::horizontalRow(int sourceY) {
    const auto place = static_cast<std::size_t>(sourceY) % m_ringRow.size();
    std::uint16_t* row = m_ring.data() + place * m_ringStride;
    if (m_ringRow[place] != sourceY) {
        resampleRow(m_source.row(sourceY), row);
        m_ringRow[place] = sourceY;
    }
    return row;
}

void Resampler::resampleRow(const std::uint8_t* in, std::uint16_t* out) const {
    const int taps = m_columns.count;
    const std::int16_t* weights = m_columns.weights.data();
    for (const int first : m_columns.first) {
        const std::uint8_t* pixel = in + static_cast<std::ptrdiff_t>(first) * kChannels;
        std::uint32_t sums[kChannels] = {kFirstHalf, kFirstHalf, kFirstHalf, kFirstHalf};
        for (int tap = 0; tap < taps; ++tap, pixel += kChannels) {
            const auto weight = static_cast<std::uint32_t>(weights[tap]);
            for (int c = 0; c < kChannels; ++c) {
                sums[c] += pixel[c] * weight;
            }
        }
        weights += taps;
        for (int c = 0; c < kChannels; ++c) {
            *out++ = static_cast<std::uint16_t>(sums[c] >> kFirstShift);
        }
    }
}

} // namespace tavi
