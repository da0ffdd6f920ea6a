#pragma once

#include "project/CursorEvent.h"
#include "project/ValuesJson.h"

namespace tavi {

void write(JsonWriter& json, const CursorEvent& event);
void read(JsonElement element, CursorEvent& out, std::string_view key, JsonFailure& failure);

void write(JsonWriter& json, const CursorImageInfo& info);
void read(JsonElement element, CursorImageInfo& out, std::string_view key, JsonFailure& failure);

} // namespace tavi
