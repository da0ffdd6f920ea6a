#include "render/CoverageMask.h"

#include "render/RenderGeometry.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tavi {

namespace {

/// Lines per pixel row along which a curved edge is measured; along each line the
/// covered length is exact.
constexpr int kLines = 16;

constexpr double kWhole = 255.0;

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
class RowMeasure {
public:
    explicit RowMeasure(const PixelBounds& bounds)
        : m_bounds(bounds),
          m_covered(static_cast<std::size_t>(std::max(0, bounds.width()))) {}

    void measure(const RoundedShape& shape, int y) {
        std::fill(m_covered.begin(), m_covered.end(), 0.0F);
        const Interval lines = shape.linesOf(y);
        const double height = std::max(0.0, lines.right - lines.left);
        const int count = shape.isStraight(y) ? 1 : kLines;
        for (int i = 0; i < count; ++i) {
            const double line = lines.left + height * (i + 0.5) / count;
            add(shape.at(line), height / count);
        }
    }

    /// Appends the partly covered pixels to `coverage`; tells the whole ones.
    Interval store(std::vector<std::uint8_t>& coverage) const {
        std::vector<std::uint8_t> row(m_covered.size());
        std::transform(m_covered.begin(), m_covered.end(), row.begin(), [](float covered) {
            return static_cast<std::uint8_t>(std::lround(std::min(1.0F, covered) * kWhole));
        });
        const auto isWhole = [](std::uint8_t c) { return c == 255; };
        const auto begin = std::find_if(row.begin(), row.end(), isWhole);
        const auto end = std::find_if_not(begin, row.end(), isWhole);
        coverage.insert(coverage.end(), row.begin(), begin);
        coverage.insert(coverage.end(), end, row.end());
        return {static_cast<double>(begin - row.begin()), static_cast<double>(end - row.begin())};
    }

private:
    /// Adds a line's covered stretch, `weight` of a pixel high.
    void add(const Interval& covered, double weight) {
        const double left = std::max<double>(covered.left, m_bounds.left);
        const double right = std::min<double>(covered.right, m_bounds.right);
        if (!(right > left)) {
            return;
        }
        const int last = std::min(m_bounds.right - 1, static_cast<int>(std::floor(right)));
        for (int x = static_cast<int>(std::floor(left)); x <= last; ++x) {
            const double part = std::min<double>(right, x + 1.0) - std::max<double>(left, x);
            m_covered[static_cast<std::size_t>(x - m_bounds.left)] +=
                static_cast<float>(part * weight);
        }
    }

    PixelBounds m_bounds;
    std::vector<float> m_covered;
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
