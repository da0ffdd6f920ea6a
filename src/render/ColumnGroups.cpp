#include "render/ColumnGroups.h"

#include <algorithm>

namespace tavi {

namespace {

constexpr int kChannels = 4;
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

/// Writes a weight once a channel; returns where the next one goes.
std::uint16_t* putShares(std::uint16_t* out, std::int16_t weight) {
    return std::fill_n(out, kChannels, static_cast<std::uint16_t>(weight));
}

int groupCount(const AxisTaps& taps, int size) {
    return (static_cast<int>(taps.first.size()) + size - 1) / size;
}

} // namespace

void ColumnGroups::resize(int columns, int loads, int taps) {
    const auto count = static_cast<std::size_t>(columns);
    const auto groups = count / static_cast<std::size_t>(size);
    bases.resize(groups * static_cast<std::size_t>(loads));
    lanes.resize(bases.size() * static_cast<std::size_t>(pixelsInAVector()));
    shares.resize(count * static_cast<std::size_t>(taps * kChannels));
}

bool ColumnGroups::makeInterpolation(const AxisTaps& taps, int sourceWidth) {
    const int vector = pixelsInAVector();
    if (vector == 0 || sourceWidth <= vector || taps.count != 2 || !advancesByPixels(taps.first)) {
        return false;
    }
    size = vector;
    const int count = groupCount(taps, size) * size;
    resize(count, 1, 2);
    std::int32_t* lane = lanes.data();
    std::uint16_t* share = shares.data();
    for (int start = 0; start < count; start += size) {
        const int base = std::min(columnOf(taps, start).first, sourceWidth - vector - 1);
        bases[static_cast<std::size_t>(start / size)] = base;
        // Each block gets two pixels of the group's first half and two of the
        // second: interleaving parts the halves, in the columns' order.
        for (int pair = 0; pair < size / 2; pair += 2) {
            for (const int x : {pair, pair + 1, size / 2 + pair, size / 2 + pair + 1}) {
                *lane++ = columnOf(taps, start + x).first - base;
            }
        }
        for (const int half : {0, size / 2}) {
            for (const int tap : {0, 1}) {
                for (int x = half; x < half + size / 2; ++x) {
                    share = putShares(share, columnOf(taps, start + x).weights[tap]);
                }
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
    resize(count, 2, kReductionTaps);
    std::int32_t* lane = lanes.data();
    std::uint16_t* share = shares.data();
    for (int start = 0; start < count; start += half) {
        const int base = std::min(columnOf(taps, start).first, sourceWidth - vector);
        if (columnOf(taps, start + half - 1).first + taps.count > base + vector) {
            return false;
        }
        bases[static_cast<std::size_t>(start / half)] = base;
        for (int x = start; x < start + half; ++x) { // a block has one column's pixels
            const int first = columnOf(taps, x).first - base;
            for (int tap = 0; tap < kReductionTaps; ++tap) {
                *lane++ = std::min(first + tap, vector - 1);
            }
        }
        for (const int pair : {0, 2}) {
            for (int x = start; x < start + half; ++x) {
                const Column column = columnOf(taps, x);
                for (const int tap : {pair, pair + 1}) {
                    share =
                        putShares(share, tap < taps.count ? column.weights[tap] : std::int16_t{0});
                }
            }
        }
    }
    return true;
}

} // namespace tavi
