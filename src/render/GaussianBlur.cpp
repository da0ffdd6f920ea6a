#include "render/GaussianBlur.h"

#include "render/BlurKernels.h"

#include <algorithm>
#include <cmath>

namespace tavi {

namespace {

constexpr double kLeastDeviation = 3.5;     // below this interpolation would show
constexpr double kLargestSigma = 1e4;       // wider than any frame
constexpr double kKernelReach = 4.0;        // deviations; leaves 6e-5 of the weight out
constexpr double kBinomialVariance = 0.75;  // of 1 3 3 1, in pixels of the finer level
constexpr double kLinearVariance = 1.0 / 6; // of linear interpolation, mean over all phases

constexpr int kScale = 64; // a step of 8 bits in a level's samples
constexpr int kMargin = 6; // pixels that 1 3 3 1 looks at beyond a level with its border, at most
constexpr int kQuarterMargin = 14; // the same for the filter applied twice

std::vector<float> gaussianKernel(double sigma) {
    const int reach = static_cast<int>(std::ceil(sigma * kKernelReach));
    std::vector<double> half(static_cast<std::size_t>(reach) + 1);
    double total = 0;
    for (int i = 0; i <= reach; ++i) {
        const double value = sigma > 0 ? std::exp(-0.5 * i * i / (sigma * sigma)) : 1.0;
        half[static_cast<std::size_t>(i)] = value;
        total += i == 0 ? value : 2 * value;
    }
    std::vector<float> kernel(half.size());
    std::transform(half.begin(), half.end(), kernel.begin(),
                   [&](double value) { return static_cast<float>(value / total); });
    return kernel;
}

/// Halvings after which at least kLeastDeviation pixels of deviation are left.
int halvingsFor(double sigma) {
    int halvings = 0;
    while (sigma / (2 << halvings) >= kLeastDeviation) {
        ++halvings;
    }
    return halvings;
}

/// What the kernel has to add on the last level, in its pixels.
double deviationLeft(double sigma, int halvings) {
    if (halvings == 0) {
        return sigma;
    }
    const double pixel = std::pow(4.0, halvings); // area of one pixel of the last level
    const double halving = kBinomialVariance * (pixel - 1) / 3;
    return std::sqrt((sigma * sigma - halving - kLinearVariance * pixel) / pixel);
}

} // namespace

void GaussianBlur::blur(const SampleView& source, double sigma, BlurEdges edges) {
    m_channels = source.channels;
    m_sourceWidth = source.width;
    m_sourceHeight = source.height;
    m_edges = edges;
    const double deviation = sigma > 0 ? std::min(sigma, kLargestSigma) : 0;
    m_halvings = halvingsFor(deviation);
    if (m_halvings == 0) {
        load(source, m_level);
    } else if (m_halvings == 1) {
        halveSource(source, m_level);
    } else {
        quarterSource(source, m_level);
    }
    for (int i = 2; i < m_halvings; ++i) {
        halve(m_level, m_spare);
        std::swap(m_level, m_spare);
    }
    if (deviation > 0) {
        convolve(m_level, deviationLeft(deviation, m_halvings));
    }
}

void GaussianBlur::resize(Level& level, int width, int height) const {
    level.width = width;
    level.height = height;
    level.stride =
        static_cast<std::size_t>(width + 2 * kBorder) * static_cast<std::size_t>(m_channels);
    const std::size_t count = level.stride * static_cast<std::size_t>(height + 2 * kBorder);
    if (level.samples.size() < count) { // growing anew for each picture would clear it anew
        level.samples.resize(count);
    }
}

void GaussianBlur::load(const SampleView& source, Level& level) const {
    resize(level, source.width, source.height);
    const auto channels = static_cast<std::size_t>(m_channels);
    for (int y = -kBorder; y < source.height + kBorder; ++y) {
        const int inside = std::clamp(y, 0, source.height - 1);
        const std::uint8_t* in = source.data + source.stride * static_cast<std::size_t>(inside);
        std::uint16_t* out =
            level.samples.data() + level.stride * static_cast<std::size_t>(y + kBorder);
        for (int x = -kBorder; x < source.width + kBorder; ++x) {
            const int column = std::clamp(x, 0, source.width - 1);
            const bool isSeen = m_edges == BlurEdges::extended || (column == x && inside == y);
            for (std::size_t c = 0; c < channels; ++c) {
                const int value = in[static_cast<std::size_t>(column) * channels + c];
                *out++ = static_cast<std::uint16_t>(isSeen ? value * kScale : 0);
            }
        }
    }
}

namespace {

/// Repeats the first and the last pixel of a row `margin` times beyond it.
void extendRow(std::uint16_t* row, std::size_t pixels, std::size_t channels, std::size_t margin) {
    for (std::size_t i = 0; i < margin * channels; ++i) {
        row[-static_cast<std::ptrdiff_t>(margin * channels) + static_cast<std::ptrdiff_t>(i)] =
            row[i % channels];
        row[pixels * channels + i] = row[(pixels - 1) * channels + i % channels];
    }
}

/// The rows of a picture, and what a blur sees above and below them.
class SourceRows {
public:
    SourceRows(const SampleView& source, BlurEdges edges)
        : m_source(source),
          m_nothing(edges == BlurEdges::transparent ? static_cast<std::size_t>(source.width) *
                                                          static_cast<std::size_t>(source.channels)
                                                    : 0) {}

    const std::uint8_t* at(int y) const {
        const int inside = std::clamp(y, 0, m_source.height - 1);
        return inside == y || m_nothing.empty()
                   ? m_source.data + m_source.stride * static_cast<std::size_t>(inside)
                   : m_nothing.data();
    }

private:
    SampleView m_source;
    std::vector<std::uint8_t> m_nothing;
};

} // namespace

void GaussianBlur::halveSource(const SampleView& source, Level& to) {
    resize(to, (source.width + 1) / 2, (source.height + 1) / 2);
    const auto channels = static_cast<std::size_t>(m_channels);
    const auto width = static_cast<std::size_t>(source.width);
    const std::size_t count = width * channels;
    const std::size_t margin = kMargin;
    m_row.assign(count + 2 * margin * channels, 0);
    const SourceRows rows(source, m_edges);
    for (int y = -kBorder; y < to.height + kBorder; ++y) {
        std::uint16_t* row = m_row.data() + margin * channels;
        addBinomialRows({rows.at(2 * y - 1), rows.at(2 * y), rows.at(2 * y + 1), rows.at(2 * y + 2),
                         rows.at(2 * y + 3), rows.at(2 * y + 4)},
                        row, count);
        if (m_edges == BlurEdges::extended) {
            extendRow(row, width, channels, margin);
        }
        const std::size_t start = margin - (2 * kBorder + 1);
        halveRow(m_row.data() + start * channels,
                 to.samples.data() + to.stride * static_cast<std::size_t>(y + kBorder),
                 static_cast<std::size_t>(to.width + 2 * kBorder), channels, Halving::sum);
    }
}

/// Halves twice: the large picture is read once, and nothing of half its size is
/// kept.
void GaussianBlur::quarterSource(const SampleView& source, Level& to) {
    resize(to, (source.width + 3) / 4, (source.height + 3) / 4);
    const auto channels = static_cast<std::size_t>(m_channels);
    const auto width = static_cast<std::size_t>(source.width);
    const auto pixels = static_cast<std::size_t>(to.width + 2 * kBorder);
    const std::size_t halfPixels = 2 * pixels + 2; // what the second filter looks at
    const std::size_t margin = kQuarterMargin;
    m_row.assign((width + 2 * margin) * channels, 0);
    m_halfRow.resize(halfPixels * channels);
    const SourceRows rows(source, m_edges);
    for (int y = -kBorder; y < to.height + kBorder; ++y) {
        TenRows ten;
        for (int i = 0; i < 10; ++i) {
            ten.rows[static_cast<std::size_t>(i)] = rows.at(4 * y - 3 + i);
        }
        for (int i = 0; i < 4; ++i) {
            ten.next[static_cast<std::size_t>(i)] = rows.at(4 * y + 7 + i);
        }
        std::uint16_t* row = m_row.data() + margin * channels;
        addQuarterRows(ten, row, width * channels);
        if (m_edges == BlurEdges::extended) {
            extendRow(row, width, channels, margin);
        }
        const std::size_t start = margin - (4 * kBorder + 3);
        halveRow(m_row.data() + start * channels, m_halfRow.data(), halfPixels, channels,
                 Halving::average);
        halveRow(m_halfRow.data(),
                 to.samples.data() + to.stride * static_cast<std::size_t>(y + kBorder), pixels,
                 channels, Halving::average);
    }
}

void GaussianBlur::halve(const Level& from, Level& to) {
    resize(to, (from.width + 1) / 2, (from.height + 1) / 2);
    const auto channels = static_cast<std::size_t>(m_channels);
    const auto width = static_cast<std::size_t>(from.width + 2 * kBorder);
    const std::size_t margin = kMargin;
    m_row.assign((width + 2 * margin) * channels, 0);
    const auto rowAt = [&](int y) {
        const int inside = std::clamp(y, -kBorder, from.height + kBorder - 1) + kBorder;
        return from.samples.data() + from.stride * static_cast<std::size_t>(inside);
    };
    for (int y = -kBorder; y < to.height + kBorder; ++y) {
        std::uint16_t* row = m_row.data() + margin * channels;
        averageBinomialRows({rowAt(2 * y - 1), rowAt(2 * y), rowAt(2 * y + 1), rowAt(2 * y + 2)},
                            row, width * channels);
        extendRow(row, width, channels, margin);
        // Sample -kBorder of the coarse level looks at -2 * kBorder - 1 of the fine one.
        const std::size_t start = margin + kBorder - (2 * kBorder + 1);
        halveRow(m_row.data() + start * channels,
                 to.samples.data() + to.stride * static_cast<std::size_t>(y + kBorder),
                 static_cast<std::size_t>(to.width + 2 * kBorder), channels, Halving::average);
    }
}

void GaussianBlur::convolve(Level& level, double sigma) {
    const std::vector<float> kernel = gaussianKernel(sigma);
    const auto channels = static_cast<std::size_t>(m_channels);
    const std::size_t reach = kernel.size() - 1;
    const std::size_t count = level.stride;
    const std::size_t pixels = count / channels;
    const int height = level.height + 2 * kBorder;
    std::vector<const float*> before(reach);
    std::vector<const float*> after(reach);
    m_convolved.resize(count * static_cast<std::size_t>(height));
    m_line.resize(count + 2 * reach * channels);
    float* line = m_line.data() + reach * channels;
    for (int y = 0; y < height; ++y) {
        const std::uint16_t* in = level.samples.data() + count * static_cast<std::size_t>(y);
        std::copy_n(in, count, line);
        for (std::size_t i = 0; i < reach * channels; ++i) {
            m_line[i] = line[i % channels];
            line[count + i] = line[(pixels - 1) * channels + i % channels];
        }
        for (std::size_t k = 0; k < reach; ++k) {
            before[k] = line - (k + 1) * channels;
            after[k] = line + (k + 1) * channels;
        }
        addSymmetricRows({line, before, after}, kernel.data(),
                         m_convolved.data() + count * static_cast<std::size_t>(y), count);
    }
    const auto rowAt = [&](int y) {
        return m_convolved.data() + count * static_cast<std::size_t>(std::clamp(y, 0, height - 1));
    };
    for (int y = 0; y < height; ++y) {
        for (std::size_t k = 0; k < reach; ++k) {
            before[k] = rowAt(y - static_cast<int>(k) - 1);
            after[k] = rowAt(y + static_cast<int>(k) + 1);
        }
        addSymmetricRows({rowAt(y), before, after}, kernel.data(), m_line.data(), count);
        std::uint16_t* out = level.samples.data() + count * static_cast<std::size_t>(y);
        std::transform(m_line.data(), m_line.data() + count, out, [](float v) {
            return static_cast<std::uint16_t>(static_cast<std::int32_t>(v + 0.5F));
        });
    }
}

std::vector<PixelPlace> GaussianBlur::placesOn(const AxisMapping& mapping, int begin, int end,
                                               int size) const {
    std::vector<PixelPlace> places;
    places.reserve(static_cast<std::size_t>(std::max(0, end - begin)));
    const double step = mapping.sourceLength / mapping.targetLength;
    const double last = size + 2 * kBorder - 1;
    for (int i = begin; i < end; ++i) {
        const double source = mapping.sourceStart + (i + 0.5 - mapping.targetStart) * step;
        const double position = source / (1 << m_halvings) - 0.5 + kBorder;
        const double limited = std::clamp(position, 0.0, last);
        const double pixel = std::min(std::floor(limited), last - 1);
        const auto fraction = static_cast<std::int32_t>(std::lround((limited - pixel) * kPlaceOne));
        places.push_back({static_cast<std::int32_t>(pixel), std::min(fraction, kPlaceOne - 1)});
    }
    return places;
}

void GaussianBlur::begin(const AxisMapping& columns, const AxisMapping& rows,
                         const PixelBounds& pixels) {
    m_pixels = pixels;
    m_columns = placesOn(columns, pixels.left, pixels.right, m_level.width);
    m_rows = placesOn(rows, pixels.top, pixels.bottom, m_level.height);
    m_mixed.resize(m_level.stride);
}

void GaussianBlur::begin() {
    const double width = m_sourceWidth;
    const double height = m_sourceHeight;
    begin({0, width, 0, width, m_sourceWidth}, {0, height, 0, height, m_sourceHeight},
          {0, 0, m_sourceWidth, m_sourceHeight});
}

void GaussianBlur::writeRow(int y, int left, int right, std::uint8_t* out) {
    if (left >= right) {
        return;
    }
    const auto count = static_cast<std::size_t>(right - left);
    const auto channels = static_cast<std::size_t>(m_channels);
    const PixelPlace* columns = m_columns.data() + (left - m_pixels.left);
    const PixelPlace& row = m_rows[static_cast<std::size_t>(y - m_pixels.top)];
    const auto first = static_cast<std::size_t>(columns[0].first) * channels;
    const auto end = static_cast<std::size_t>(columns[count - 1].first + 2) * channels;
    const std::uint16_t* above =
        m_level.samples.data() + m_level.stride * static_cast<std::size_t>(row.first);
    mixSamples(above + first, above + m_level.stride + first, row.fraction, m_mixed.data() + first,
               end - first);
    mixPixels(m_mixed.data(), columns, count, channels, out);
}

void gaussianBlur(ImageView dst, ConstImageView src, double sigma, BlurEdges edges) {
    if (src.empty()) {
        return;
    }
    GaussianBlur blur;
    blur.blur({src.data, src.width, src.height, src.stride, PixelBuffer::kBytesPerPixel}, sigma,
              edges);
    blur.begin();
    for (int y = 0; y < dst.height; ++y) {
        blur.writeRow(y, 0, dst.width, dst.row(y));
    }
}

} // namespace tavi
