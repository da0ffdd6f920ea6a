#pragma once

#include "autozoom/UnifiedAutoZoom.h"
#include "project/RawValue.h"

#include <functional>
#include <span>
#include <vector>

namespace tavi {

/// Runs the analysis of a take and tells how far it is. Stateless; any thread.
class AutoZoomService {
public:
    enum class AnalysisPhase { detectingActivity, simulatingCamera, emittingKeyframes, complete };

    struct Progress {
        AnalysisPhase phase = AnalysisPhase::detectingActivity;
        double phaseProgress = 0;   ///< Within the phase, 0 to 1.
        double overallProgress = 0; ///< As shown to the user, 0 to 1.

        bool operator==(const Progress&) const = default;
    };

    using Report = std::function<void(const Progress&)>;

    /// The keyframes of a log in the order in which it was written. `report` is called on
    /// this thread: when the analysis begins and when it is complete, not at all for an
    /// empty log.
    /// Errors: none; empty where UnifiedAutoZoom::generate() gives nothing.
    std::vector<ZoomKeyframe> generate(std::span<const CursorEvent> events,
                                       const UnifiedAutoZoom::Inputs& inputs,
                                       const Report& report) const;
};

/// The texts of the phases, as shown.
template<>
struct RawValues<AutoZoomService::AnalysisPhase> {
    static constexpr std::array<std::string_view, 4> names{"Detecting activity regions...",
                                                           "Simulating camera movements...",
                                                           "Generating keyframes...", "Complete"};
};

} // namespace tavi
