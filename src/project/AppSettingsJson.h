#pragma once

#include "project/AppSettings.h"
#include "project/Json.h"

#include <string>
#include <string_view>

namespace tavi {

/// `settings.json` as text, keys in the order of the fields.
Result<std::string, JsonError> encodeAppSettings(const AppSettings& settings);

/// Reads `settings.json`. All seven keys are required.
Result<AppSettings, JsonError> decodeAppSettings(std::string_view json);

} // namespace tavi
