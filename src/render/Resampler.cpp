#include "render/Resampler.h"

#include "render/Composite.h"
#include "render/MixRows.h"
#include "render/RenderGeometry.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace tavi {

namespace {

constexpr int kChannels = PixelBuffer::kBytesPerPixel;

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
    m_columnPass.begin(m_columns, source.width);
    m_mixedRows.reserve(static_cast<std::size_t>(m_rows.count));
    m_mixedWeights.reserve(static_cast<std::size_t>(m_rows.count));
    m_ringStride = m_columnPass.rowSize();
    m_ring.resize(m_ringStride * static_cast<std::size_t>(m_rows.count));
    m_ringRows.assign(static_cast<std::size_t>(m_rows.count), {});
}

bool Resampler::writeRow(int y, int left, int right, std::uint8_t* out) {
    assert(y >= m_pixels.top && y < m_pixels.bottom && left >= m_pixels.left &&
           right <= m_pixels.right);
    if (right <= left) {
        return true;
    }
    const int first = m_rows.firstOf(y);
    const std::int16_t* weights = m_rows.weightsOf(y);
    const auto count = static_cast<std::size_t>(right - left) * kChannels;
    const auto whole = std::find(weights, weights + m_rows.count, AxisTaps::kOne);
    if (m_copyColumn && whole != weights + m_rows.count) {
        const int column = *m_copyColumn + left - m_columns.begin;
        const std::uint8_t* in = m_source.row(first + static_cast<int>(whole - weights));
        std::memcpy(out, in + static_cast<std::ptrdiff_t>(column) * kChannels, count);
        return isRowOpaque(out, right - left);
    }
    const auto begin = static_cast<std::size_t>(left - m_pixels.left) * kChannels;
    bool isOpaque = true;
    m_mixedRows.clear();
    m_mixedWeights.clear();
    for (int tap = 0; tap < m_rows.count; ++tap) {
        if (weights[tap] != 0) {
            const std::size_t place = horizontalRow(first + tap);
            m_mixedRows.push_back(m_ring.data() + place * m_ringStride + begin);
            m_mixedWeights.push_back(weights[tap]);
            isOpaque = isOpaque && m_ringRows[place].isOpaque;
        }
    }
    mixRows(m_mixedRows, m_mixedWeights.data(), out, count);
    return isOpaque;
}

std::size_t Resampler::horizontalRow(int sourceY) {
    const auto place = static_cast<std::size_t>(sourceY) % m_ringRows.size();
    RingRow& row = m_ringRows[place];
    if (row.sourceY != sourceY) {
        const int nextY = std::min(sourceY + 1, m_source.height - 1);
        row.isOpaque = m_columnPass.columns(m_source.row(sourceY), m_source.row(nextY), m_columns,
                                            m_ring.data() + place * m_ringStride);
        row.sourceY = sourceY;
    }
    return place;
}

} // namespace tavi
