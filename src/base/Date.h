#pragma once

#include <compare>

namespace tavi {

/// A moment of wall-clock time: seconds since 2001-01-01 00:00:00 UTC, the
/// reference date of the file formats. Leap seconds don't count (POSIX time).
struct Date {
    double sinceReference = 0;

    /// Seconds from 1970-01-01 to the reference date.
    static constexpr double kReferenceSinceEpoch = 978307200.0;

    static constexpr Date fromEpoch(double seconds) { return {seconds - kReferenceSinceEpoch}; }
    constexpr double sinceEpoch() const { return sinceReference + kReferenceSinceEpoch; }

    /// Seconds from `other` to this date.
    constexpr double since(Date other) const { return sinceReference - other.sinceReference; }

    auto operator<=>(const Date&) const = default;
};

} // namespace tavi
