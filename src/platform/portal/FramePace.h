#pragma once

#include "base/MediaTime.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

namespace tavi {

/// Keeps pictures a minimum interval apart, whatever comes. All times are nanoseconds of the host
/// clock.
class FramePace {
public:
    /// A picture may come so much before or after its turn, since the steps of a compositor's clock
    /// tremble, on a busy machine by a quarter of an interval.
    static constexpr std::int64_t kTolerance = 4'000'000;

    explicit FramePace(MediaTime interval)
        : m_interval((interval.value * MediaTime::kNanoseconds + interval.timescale - 1) /
                     interval.timescale) {}

    /// The presentation time of a picture that was taken at `taken` and comes at `now`: at least
    /// an interval after the one before. Absent when it must wait until nextTurn().
    std::optional<std::int64_t> admit(std::int64_t taken, std::int64_t now) {
        if (m_hasBegun && now < m_turn - kTolerance) {
            return std::nullopt;
        }
        const std::int64_t time = m_hasBegun ? std::max(taken, m_earliest) : taken;
        // On the beat as long as pictures come on it, so that 60 a second stay 60.
        const bool isOnBeat = m_hasBegun && now < m_turn + kTolerance;
        m_turn = (isOnBeat ? m_turn : now) + m_interval;
        m_earliest = time + m_interval;
        m_hasBegun = true;
        return time;
    }

    std::int64_t nextTurn() const { return m_turn; }

private:
    std::int64_t m_interval;
    bool m_hasBegun = false;
    std::int64_t m_turn = 0;
    std::int64_t m_earliest = 0; ///< The least presentation time of the next picture.
};

} // namespace tavi
