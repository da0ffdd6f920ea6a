#include "autozoom/AutoZoomService.h"

namespace tavi {

namespace {

/// What the bar shows while the analysis runs, which is over before more would be seen.
constexpr double kBegun = 0.1;

} // namespace

std::vector<ZoomKeyframe> AutoZoomService::generate(std::span<const CursorEvent> events,
                                                    const UnifiedAutoZoom::Inputs& inputs,
                                                    const Report& report) const {
    if (events.empty()) {
        return {};
    }
    report({AnalysisPhase::detectingActivity, 0.0, kBegun});
    auto keyframes = UnifiedAutoZoom::generate(events, inputs);
    report({AnalysisPhase::complete, 1.0, 1.0});
    return keyframes;
}

} // namespace tavi
