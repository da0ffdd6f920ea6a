#include "render/ExportError.h"

namespace tavi {

std::string description(ExportError error) {
    switch (error) {
    case ExportError::noVideoTrack:
        return "No video track found in recording.";
    case ExportError::cancelled:
        return "Export was cancelled.";
    }
    return {};
}

std::string description(const ExportFailure& failure) {
    if (const auto* own = std::get_if<ExportError>(&failure)) {
        return description(*own);
    }
    return std::get<MediaError>(failure).description();
}

} // namespace tavi
