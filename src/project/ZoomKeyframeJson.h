#pragma once

#include "project/ValuesJson.h"
#include "project/ZoomKeyframe.h"

namespace tavi {

void write(JsonWriter& json, const ZoomWaypoint& waypoint);
/// Also reads the older form of a waypoint: a `rect`, whose middle is the centre.
void read(JsonElement element, ZoomWaypoint& out, std::string_view key, JsonFailure& failure);

void write(JsonWriter& json, const ZoomCurvePoint& point);
void read(JsonElement element, ZoomCurvePoint& out, std::string_view key, JsonFailure& failure);

void write(JsonWriter& json, const ZoomKeyframe& keyframe);
void read(JsonElement element, ZoomKeyframe& out, std::string_view key, JsonFailure& failure);

} // namespace tavi
