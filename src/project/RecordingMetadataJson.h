#pragma once

#include "project/Json.h"
#include "project/RecordingMetadata.h"

#include <string>
#include <string_view>

namespace tavi {

/// `metadata.json` as text: compact, keys in the order of the fields. Fails only
/// for a number that is not finite.
Result<std::string, JsonError> encodeRecordingMetadata(const RecordingMetadata& metadata);

/// Reads `metadata.json`. A missing required key, a wrong type or an unknown
/// event type fails the whole.
Result<RecordingMetadata, JsonError> decodeRecordingMetadata(std::string_view json);

} // namespace tavi
