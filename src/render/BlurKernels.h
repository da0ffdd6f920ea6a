#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tavi {

/// The inner loops of GaussianBlur. What is called plain is the reference of the
/// fast function of that name, which uses the vectors that this processor has.
/// Errors: none. Thread: any; none allocates.

/// Four rows of samples, from the top down, of the same length.
template<typename Sample>
struct FourRows {
    const Sample* a = nullptr;
    const Sample* b = nullptr;
    const Sample* c = nullptr;
    const Sample* d = nullptr;
    const Sample* next = a; ///< Rows that are wanted next, fetched meanwhile.
    const Sample* afterNext = a;
};

/// Rows of 8-bit samples by 1 3 3 1: sums of up to 8 * 255, exact.
void addBinomialRows(const FourRows<std::uint8_t>& rows, std::uint16_t* sums, std::size_t count);
void plainAddBinomialRows(const FourRows<std::uint8_t>& rows, std::uint16_t* sums,
                          std::size_t count);

/// Ten rows of a picture, from the top down, of the same length.
struct TenRows {
    std::array<const std::uint8_t*, 10> rows{};
    std::array<const std::uint8_t*, 4> next{}; ///< Rows that are wanted next, fetched meanwhile.
};

/// What the filter 1 3 3 1 makes of rows twice, 1 3 6 10 12 12 10 6 3 1: sums of up
/// to 64 * 255, exact.
void addQuarterRows(const TenRows& rows, std::uint16_t* sums, std::size_t count);
void plainAddQuarterRows(const TenRows& rows, std::uint16_t* sums, std::size_t count);

/// Rows of samples up to 2^14 by 1 3 3 1, divided by 8, within one. The fast
/// version gives the same numbers.
void averageBinomialRows(const FourRows<std::uint16_t>& rows, std::uint16_t* out,
                         std::size_t count);
void plainAverageBinomialRows(const FourRows<std::uint16_t>& rows, std::uint16_t* out,
                              std::size_t count);

/// What becomes of four neighbours in halveRow().
enum class Halving {
    sum,     ///< 1 3 3 1, exact; samples are up to 8 * 255.
    average, ///< An eighth of that, within one; samples are up to 2^14.
};

/// Filters along x by 1 3 3 1 and keeps every second pixel: `in` holds
/// 2 * `pixels` + 2 pixels, the first being the first that the first result looks
/// at. The fast version gives the same numbers.
void halveRow(const std::uint16_t* in, std::uint16_t* out, std::size_t pixels, std::size_t channels,
              Halving halving);
void plainHalveRow(const std::uint16_t* in, std::uint16_t* out, std::size_t pixels,
                   std::size_t channels, Halving halving);

/// One number of a symmetric convolution is middle[i] * weights[0] plus, for each
/// further weight k, (before[k - 1][i] + after[k - 1][i]) * weights[k]. The fast
/// version rounds less often: within 1e-6 of the sum.
struct SymmetricRows {
    const float* middle = nullptr;
    std::span<const float* const> before; ///< Nearest first.
    std::span<const float* const> after;
};
void addSymmetricRows(const SymmetricRows& rows, const float* weights, float* out,
                      std::size_t count);
void plainAddSymmetricRows(const SymmetricRows& rows, const float* weights, float* out,
                           std::size_t count);

/// A whole of the fractions in mixPixels(); the largest, one less, stands for it,
/// which rounding makes exact.
constexpr int kPlaceOne = 1 << 15;

/// A place between two pixels of a row.
struct PixelPlace {
    std::int32_t first = 0;    ///< The pixel before it.
    std::int32_t fraction = 0; ///< The share of the pixel after it, 0 .. kPlaceOne - 1.
};

/// Writes the 8-bit values of the samples at `count` places. Samples are 64 times
/// the value, up to 2^14. The fast version gives the same bytes.
void mixPixels(const std::uint16_t* samples, const PixelPlace* places, std::size_t count,
               std::size_t channels, std::uint8_t* out);
void plainMixPixels(const std::uint16_t* samples, const PixelPlace* places, std::size_t count,
                    std::size_t channels, std::uint8_t* out);

/// The same between two rows of `count` samples, the results being samples.
void mixSamples(const std::uint16_t* a, const std::uint16_t* b, std::int32_t fraction,
                std::uint16_t* out, std::size_t count);
void plainMixSamples(const std::uint16_t* a, const std::uint16_t* b, std::int32_t fraction,
                     std::uint16_t* out, std::size_t count);

} // namespace tavi
