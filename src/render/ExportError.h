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

/// For the user.
Message messageOf(ExportError error);

/// Our own errors, and those of the media stack as they come.
using ExportFailure = std::variant<ExportError, MediaError>;

/// For the user.
Message messageOf(const ExportFailure& failure);
std::string description(const ExportFailure& failure);

} // namespace tavi
