#include "render/ExportError.h"

namespace tavi {

Message messageOf(ExportError error) {
    switch (error) {
    case ExportError::noVideoTrack:
        return TAVI_TEXT("Errors", "No video track found in recording.");
    case ExportError::cancelled:
        return TAVI_TEXT("Errors", "Export was cancelled.");
    }
    return {};
}

Message messageOf(const ExportFailure& failure) {
    if (const auto* own = std::get_if<ExportError>(&failure)) {
        return messageOf(*own);
    }
    return std::get<MediaError>(failure).message();
}

std::string description(const ExportFailure& failure) {
    return messageOf(failure).english();
}

} // namespace tavi
