#pragma once

namespace tavi {

/// What drives the generation of zooms.
struct AutoZoomSettings {
    double aggressiveness = 0.5; ///< 0 is calm, 1 is eager.
    bool useTemporalDiff = true; ///< Stored and edited; no effect on the analysis.

    bool operator==(const AutoZoomSettings&) const = default;
};

} // namespace tavi
