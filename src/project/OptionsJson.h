#pragma once

#include "project/AppearanceSettings.h"
#include "project/AutoZoomSettings.h"
#include "project/CameraSettings.h"
#include "project/CursorSettings.h"
#include "project/OutputSettings.h"
#include "project/ValuesJson.h"

namespace tavi {

// The option records: keys equal the fields and stand in their order.

void write(JsonWriter& json, const OutputSettings& settings);
void write(JsonWriter& json, const CursorSettings& settings);
void write(JsonWriter& json, const AppearanceSettings& settings);
void write(JsonWriter& json, const CameraSettings& settings);
void write(JsonWriter& json, const AutoZoomSettings& settings);

/// A `backgroundType` that older files hold is ignored, whatever it is.
void read(JsonElement element, OutputSettings& out, std::string_view key, JsonFailure& failure);
/// Every key may be absent.
void read(JsonElement element, CursorSettings& out, std::string_view key, JsonFailure& failure);
// Of these three every key is required.
void read(JsonElement element, AppearanceSettings& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, CameraSettings& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, AutoZoomSettings& out, std::string_view key, JsonFailure& failure);

} // namespace tavi
