#pragma once

#include "media/MediaError.h"

#include <string>
#include <variant>

namespace tavi {

/// Why an export of our own accord went no further.
enum class ExportError {
    noVideoTrack, ///< No picture in the recording, or nothing left of it after trim and cuts.
    cancelled,
};

/// The text for the user.
std::string description(ExportError error);

/// Our own errors, and those of the media stack as they come.
using ExportFailure = std::variant<ExportError, MediaError>;

/// The text for the user.
std::string description(const ExportFailure& failure);

} // namespace tavi
