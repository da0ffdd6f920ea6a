#pragma once

#include "cli/OpenTake.h"
#include "project/Json.h"

#include <optional>
#include <string>
#include <vector>

namespace tavi::cli {

/// What to compute of a take.
struct InspectionRequest {
    std::vector<double> times; ///< Seconds of source time, or of output time.
    bool inOutputTime = false; ///< The export's view: everything is moved to output time first.
    std::optional<double> aggressiveness; ///< Use what the analysis would generate.
};

/// What the engine computes of a take, as one JSON object: sizes, kept ranges,
/// keyframes, and at each time the camera, the pointer, the ripples and the keys.
Result<std::string, JsonError> inspectTake(const OpenTake& take, const InspectionRequest& request);

} // namespace tavi::cli
