#pragma once

#include "project/TrimState.h"
#include "project/ValuesJson.h"

namespace tavi {

void write(JsonWriter& json, const TimeRange& range);
void read(JsonElement element, TimeRange& out, std::string_view key, JsonFailure& failure);

void write(JsonWriter& json, const TrimState& trim);
void read(JsonElement element, TrimState& out, std::string_view key, JsonFailure& failure);

} // namespace tavi
