#include "render/YuvConverter.h"

#include "render/YuvKernels.h"

#include <algorithm>
#include <cassert>
#include <vector>

namespace tavi {

namespace {

/// Memory for the colour of two rows of pixels.
class ChromaScratch {
public:
    explicit ChromaScratch(int chromaWidth)
        : m_width(static_cast<std::size_t>(chromaWidth)),
          m_samples(4 * (m_width + 2)) {}

    /// Row 0 or 1.
    ChromaRow row(std::size_t number) { return {line(2 * number), line(2 * number + 1)}; }

    void repeatEnds() {
        for (std::size_t number = 0; number < 4; ++number) {
            std::uint16_t* samples = line(number);
            samples[-1] = samples[0];
            samples[m_width] = samples[m_width - 1];
        }
    }

private:
    std::uint16_t* line(std::size_t number) {
        return m_samples.data() + number * (m_width + 2) + 1;
    }

    std::size_t m_width;
    std::vector<std::uint16_t> m_samples;
};

ChromaSamples chromaRow(const ConstYuvView& view, int row) {
    const int inside = std::clamp(row, 0, view.chromaHeight() - 1);
    return {view.u.row(inside), view.isInterleaved ? nullptr : view.v.row(inside),
            view.isInterleaved};
}

ChromaTarget chromaRow(const YuvView& view, int row) {
    return {view.u.row(row), view.isInterleaved ? nullptr : view.v.row(row), view.isInterleaved};
}

} // namespace

void YuvConverter::toBgra(const ConstYuvView& from, PixelBuffer& to) const {
    assert(from.width == to.width() && from.height == to.height());
    if (to.empty()) {
        return;
    }
    const YuvEncoding& encoding = from.encoding;
    const ToBgra by{toBgraWeights(encoding.matrix, encoding.range),
                    encoding.siting == ChromaSiting::centre};
    const bool isOnRows = encoding.siting == ChromaSiting::topLeft;
    const ChromaMix mix = isOnRows ? ChromaMix::halves : ChromaMix::quarters;
    const auto width = static_cast<std::size_t>(from.width);
    ChromaScratch colour(from.chromaWidth());
    // Two rows of pixels lie between each two of colour; half way down, the first
    // row lies above all of the colour.
    for (int y = isOnRows ? 0 : -1; y < from.height; y += 2) {
        const int upper = y < 0 ? -1 : y / 2;
        mixChroma(chromaRow(from, upper), chromaRow(from, upper + 1), mix, colour.row(0),
                  colour.row(1), static_cast<std::size_t>(from.chromaWidth()));
        colour.repeatEnds();
        for (int row = std::max(y, 0); row < std::min(y + 2, from.height); ++row) {
            rowToBgra(from.y.row(row), colour.row(static_cast<std::size_t>(row - y)), by,
                      to.row(row), width);
        }
    }
}

void YuvConverter::fromBgra(const PixelBuffer& from, const YuvView& to) const {
    assert(from.width() == to.width && from.height() == to.height);
    if (from.empty()) {
        return;
    }
    const YuvEncoding& encoding = to.encoding;
    const ToChroma by{fromBgraWeights(encoding.matrix, encoding.range), encoding.siting};
    const auto width = static_cast<std::size_t>(to.width);
    for (int y = 0; y < to.height; y += 2) {
        const int below = std::min(y + 1, to.height - 1);
        rowToLuma(from.row(y), by.weights.luma, to.y.row(y), width);
        rowToLuma(from.row(below), by.weights.luma, to.y.row(below), width);
        rowsToChroma({from.row(std::max(y - 1, 0)), from.row(y), from.row(below)}, by,
                     chromaRow(to, y / 2), width);
    }
}

} // namespace tavi
