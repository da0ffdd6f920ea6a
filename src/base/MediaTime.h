#pragma once

#include <compare>
#include <cstdint>

namespace tavi {

/// A rational moment or length in media: `value / timescale` seconds.
///
/// Comparison is exact (cross multiplication in 128 bits), so 1/2 equals 300/600.
/// Addition and subtraction are exact when both timescales are equal or one
/// divides the other; otherwise the result has the finer of the two timescales,
/// rounded to nearest, halves away from zero.
struct MediaTime {
    std::int64_t value = 0;
    std::int32_t timescale = 600; ///< Units per second; always positive.

    /// The timescale of edits and exports: a multiple of 24, 25, 30, 50 and 60.
    static constexpr std::int32_t kPreferredTimescale = 600;
    static constexpr std::int32_t kNanoseconds = 1'000'000'000;

    /// Nearest time to `seconds` in units of 1/timescale, halves away from zero.
    /// NaN gives 0; what an int64 can't hold is limited to its ends.
    static MediaTime fromSeconds(double seconds, std::int32_t timescale = kPreferredTimescale);
    static constexpr MediaTime fromNanoseconds(std::int64_t nanoseconds) {
        return {nanoseconds, kNanoseconds};
    }

    /// One division of two doubles.
    double seconds() const { return static_cast<double>(value) / static_cast<double>(timescale); }

    /// The same moment in another timescale, rounded to nearest, halves away from zero.
    MediaTime rescaled(std::int32_t newTimescale) const;

    MediaTime operator+(MediaTime other) const;
    MediaTime operator-(MediaTime other) const;
    std::strong_ordering operator<=>(const MediaTime& other) const;
    bool operator==(const MediaTime& other) const { return (*this <=> other) == 0; }
};

/// A stretch of media from `start` (inclusive) to `start + duration` (exclusive).
struct MediaTimeRange {
    MediaTime start;
    MediaTime duration;

    MediaTime end() const { return start + duration; }
    bool operator==(const MediaTimeRange&) const = default;
};

} // namespace tavi
