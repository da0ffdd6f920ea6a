#pragma once

#include "project/JsonReader.h"
#include "project/JsonWriter.h"
#include "project/RecordingMetadata.h"

namespace tavi {

// A sidecar as a part of another text; alone it is in RecordingMetadataJson.h.

void write(JsonWriter& json, const RecordingMetadata& metadata);
void read(JsonElement element, RecordingMetadata& out, std::string_view key, JsonFailure& failure);

} // namespace tavi
