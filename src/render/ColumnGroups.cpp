#include "render/ColumnGroups.h"

#include <algorithm>

namespace tavi {

namespace {

constexpr int kBlockPixels = 4;   // of 16 bytes, inside of which vectors interleave
constexpr int kReductionTaps = 4; // as many as a block has pixels

/// True when no column is more than one pixel on from the column before.
bool advancesByPixels(const std::vector<int>& first) {
    return std::adjacent_find(first.begin(), first.end(),
                              [](int a, int b) { return b < a || b > a + 1; }) == first.end();
}

/// One column: its first pixel and its weights.
struct Column {
    int first = 0;
    const std::int16_t* weights = nullptr;
};

/// Column `index`, the last one for those beyond it.
Column columnOf(const AxisTaps& taps, int index) {
    const int x = std::min(taps.begin + index, taps.end() - 1);
    return {taps.firstOf(x), taps.weightsOf(x)};
}

std::uint16_t shareOf(std::int16_t weight) {
    return static_cast<std::uint16_t>(weight);
}

int groupCount(const AxisTaps& taps, int size) {
    return (static_cast<int>(taps.first.size()) + size - 1) / size;
}

} // namespace

void ColumnGroups::resize(int columns, int loads) {
    const auto groups = static_cast<std::size_t>(columns) / static_cast<std::size_t>(size);
    const auto vector = static_cast<std::size_t>(pixelsInAVector());
    bases.resize(groups * static_cast<std::size_t>(loads));
    lanes.resize(bases.size() * vector);
    shares.resize(groups * 2 * vector);
}

bool ColumnGroups::makeInterpolation(const AxisTaps& taps, int sourceWidth) {
    const int vector = pixelsInAVector();
    if (vector == 0 || sourceWidth <= vector || taps.count != 2 || !advancesByPixels(taps.first)) {
        return false;
    }
    size = vector;
    const int count = groupCount(taps, size) * size;
    resize(count, 1);
    std::int32_t* base = bases.data();
    std::uint8_t* lane = lanes.data();
    std::uint16_t* share = shares.data();
    for (int start = 0; start < count; start += size, ++base) {
        *base = std::min(columnOf(taps, start).first, sourceWidth - vector - 1);
        // Each block gets two pixels of the group's first half and two of the
        // second: interleaving parts the halves, in the columns' order.
        for (int pair = start; pair < start + size / 2; pair += 2) {
            for (const int x : {pair, pair + size / 2}) {
                const Column first = columnOf(taps, x);
                const Column second = columnOf(taps, x + 1);
                *lane++ = static_cast<std::uint8_t>(first.first - *base);
                *lane++ = static_cast<std::uint8_t>(second.first - *base);
                *share++ = shareOf(first.weights[0]);
                *share++ = shareOf(second.weights[0]);
                *share++ = shareOf(first.weights[1]);
                *share++ = shareOf(second.weights[1]);
            }
        }
    }
    return true;
}

bool ColumnGroups::makeReduction(const AxisTaps& taps, int sourceWidth) {
    const int vector = pixelsInAVector();
    if (vector == 0 || sourceWidth < vector || taps.count > kReductionTaps) {
        return false;
    }
    const int half = vector / kBlockPixels; // columns that a loaded vector serves
    size = 2 * half;
    const int count = groupCount(taps, size) * size;
    resize(count, 2);
    std::int32_t* base = bases.data();
    std::uint8_t* lane = lanes.data();
    for (int start = 0; start < count; start += half, ++base) {
        *base = std::min(columnOf(taps, start).first, sourceWidth - vector);
        if (columnOf(taps, start + half - 1).first + taps.count > *base + vector) {
            return false;
        }
        for (int x = start; x < start + half; ++x) { // a block has one column's pixels
            const int first = columnOf(taps, x).first - *base;
            for (int tap = 0; tap < kReductionTaps; ++tap) {
                *lane++ = static_cast<std::uint8_t>(std::min(first + tap, vector - 1));
            }
        }
    }
    std::uint16_t* share = shares.data();
    for (int start = 0; start < count; start += size) {
        for (int block = start; block < start + half; ++block) {
            for (const int x : {block, block + half}) {
                const std::int16_t* weights = columnOf(taps, x).weights;
                for (int tap = 0; tap < kReductionTaps; ++tap) {
                    *share++ = tap < taps.count ? shareOf(weights[tap]) : std::uint16_t{0};
                }
            }
        }
    }
    return true;
}

} // namespace tavi
