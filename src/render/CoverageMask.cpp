#include "render/CoverageMask.h"

#include "render/RenderGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace tavi {

namespace {

/// Lines per pixel row along which a curved edge is measured; along each line the
/// covered length is exact.
constexpr int kLines = 16;

struct Interval {
    double left = 0;
    double right = 0;
};

class RoundedShape {
public:
    RoundedShape(const Rect& shape, double radius, const Rect& clip)
        : m_shape(shape),
          m_clip(intersection(shape, clip)),
          m_radius(radius > 0 ? std::min(radius, std::min(shape.width, shape.height) * 0.5) : 0) {}

    const Rect& extent() const { return m_clip; }

    /// Top and bottom of what pixel row `y` shares with the extent.
    Interval linesOf(int y) const {
        return {std::max<double>(y, m_clip.y), std::min<double>(y + 1.0, m_clip.maxY())};
    }

    /// True when the sides are straight all through pixel row `y`.
    bool isStraight(int y) const {
        return y >= m_shape.y + m_radius && y + 1 <= m_shape.maxY() - m_radius;
    }

    Interval at(double y) const {
        const double inset = insetAt(y);
        return {std::max(m_clip.x, m_shape.x + inset),
                std::min(m_clip.maxX(), m_shape.maxX() - inset)};
    }

private:
    double insetAt(double y) const {
        const double depth = std::max(m_shape.y + m_radius - y, y - (m_shape.maxY() - m_radius));
        if (!(depth > 0)) {
            return 0;
        }
        return m_radius - std::sqrt(std::max(0.0, m_radius * m_radius - depth * depth));
    }

    Rect m_shape;
    Rect m_clip;
    double m_radius;
};

/// One pixel row while it is measured.
///
/// Its core, the pixels that every line covers from side to side, is measured at
/// once: drawing a mask costs what its edges cost.
class RowMeasure {
public:
    explicit RowMeasure(const PixelBounds& bounds)
        : m_bounds(bounds),
          m_covered(static_cast<std::size_t>(std::max(0, bounds.width()))) {}

    void measure(const RoundedShape& shape, int y) {
        const Interval rows = shape.linesOf(y);
        const double height = std::max(0.0, rows.right - rows.left);
        const int count = shape.isStraight(y) ? 1 : kLines;
        std::array<Interval, kLines> lines;
        Interval core{0, static_cast<double>(m_bounds.width())};
        for (int i = 0; i < count; ++i) {
            Interval& line = lines[static_cast<std::size_t>(i)];
            line = shape.at(rows.left + height * (i + 0.5) / count);
            line = {std::max<double>(line.left, m_bounds.left) - m_bounds.left,
                    std::min<double>(line.right, m_bounds.right) - m_bounds.left};
            core.left = std::max(core.left, std::ceil(line.left));
            core.right = std::min(core.right, std::floor(line.right));
        }
        setCore(core, height);
        for (int i = 0; i < count; ++i) {
            const Interval& line = lines[static_cast<std::size_t>(i)];
            add(line, 0, m_coreBegin, height / count);
            add(line, m_coreEnd, m_bounds.width(), height / count);
        }
    }

    /// Appends the partly covered pixels to `coverage`; tells the whole ones.
    Interval store(std::vector<std::uint8_t>& coverage) const {
        int begin = 0;
        while (begin < m_bounds.width() && at(begin) != kWhole) {
            coverage.push_back(at(begin++));
        }
        int end = begin;
        while (end < m_bounds.width() && at(end) == kWhole) {
            end = end >= m_coreBegin && end < m_coreEnd ? m_coreEnd : end + 1;
        }
        for (int x = end; x < m_bounds.width(); ++x) {
            coverage.push_back(at(x));
        }
        return {static_cast<double>(begin), static_cast<double>(end)};
    }

private:
    static constexpr std::uint8_t kWhole = 255;

    std::uint8_t at(int x) const {
        const bool isCore = x >= m_coreBegin && x < m_coreEnd;
        const double covered = isCore ? m_coreCovered : m_covered[static_cast<std::size_t>(x)];
        return static_cast<std::uint8_t>(std::lround(std::min(1.0, covered) * kWhole));
    }

    /// Clears the row but for its core, `height` of whose pixels is covered.
    void setCore(const Interval& core, double height) {
        // Where a line covers nothing, its ends may lie anywhere.
        const double width = m_bounds.width();
        m_coreBegin = static_cast<int>(std::min(core.left, width));
        m_coreEnd = static_cast<int>(std::clamp<double>(core.right, m_coreBegin, width));
        m_coreCovered = height;
        std::fill(m_covered.begin(), m_covered.begin() + m_coreBegin, 0.0F);
        std::fill(m_covered.begin() + m_coreEnd, m_covered.end(), 0.0F);
    }

    /// Adds what a line covers of the pixels [begin, end), `weight` of a pixel high.
    void add(const Interval& line, int begin, int end, double weight) {
        const double left = std::max<double>(line.left, begin);
        const double right = std::min<double>(line.right, end);
        if (!(right > left)) {
            return;
        }
        const int last = std::min(end - 1, static_cast<int>(right));
        for (int x = static_cast<int>(left); x <= last; ++x) {
            const double part = std::min<double>(right, x + 1.0) - std::max<double>(left, x);
            m_covered[static_cast<std::size_t>(x)] += static_cast<float>(part * weight);
        }
    }

    PixelBounds m_bounds;
    std::vector<float> m_covered; ///< Of the pixels outside the core.
    int m_coreBegin = 0;          ///< Pixels from the left bound on.
    int m_coreEnd = 0;
    double m_coreCovered = 0;
};

} // namespace

void CoverageMask::assign(const Rect& shape, double radius, const Rect& clip,
                          const PixelBounds& bounds) {
    const RoundedShape rounded(shape, radius, clip);
    m_bounds = hasArea(shape) ? touchedPixels(rounded.extent(), bounds) : PixelBounds{};
    m_rows.clear();
    m_coverage.clear();
    RowMeasure measure(m_bounds);
    std::optional<StoredRow> straight; // of the rows that are all alike
    for (int y = m_bounds.top; y < m_bounds.bottom; ++y) {
        const Interval lines = rounded.linesOf(y);
        const bool isAlike = rounded.isStraight(y) && lines.right - lines.left == 1;
        if (isAlike && straight) {
            m_rows.push_back(*straight);
            continue;
        }
        measure.measure(rounded, y);
        StoredRow stored{0, 0, m_coverage.size()};
        const Interval solid = measure.store(m_coverage);
        stored.solidBegin = m_bounds.left + static_cast<int>(solid.left);
        stored.solidEnd = m_bounds.left + static_cast<int>(solid.right);
        m_rows.push_back(stored);
        if (isAlike) {
            straight = stored;
        }
    }
}

CoverageMask::Row CoverageMask::row(int y) const {
    const StoredRow& stored = m_rows[static_cast<std::size_t>(y - m_bounds.top)];
    const auto left = static_cast<std::size_t>(stored.solidBegin - m_bounds.left);
    const auto right = static_cast<std::size_t>(m_bounds.right - stored.solidEnd);
    const std::span<const std::uint8_t> all(m_coverage.data() + stored.coverage, left + right);
    return {m_bounds.left,  stored.solidBegin, stored.solidEnd,
            m_bounds.right, all.first(left),   all.subspan(left)};
}

} // namespace tavi
