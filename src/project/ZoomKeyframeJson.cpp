#include "project/ZoomKeyframeJson.h"

namespace tavi {

void write(JsonWriter& json, const ZoomWaypoint& waypoint) {
    json.beginObject();
    json.field("time", waypoint.time);
    json.field("centerX", waypoint.centerX);
    json.field("centerY", waypoint.centerY);
    json.endObject();
}

void read(JsonElement element, ZoomWaypoint& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("time", out.time);
    std::optional<double> x;
    std::optional<double> y;
    record.optional("centerX", x);
    record.optional("centerY", y);
    Point center;
    if (x && y) {
        center = {*x, *y};
    } else {
        Rect rect;
        record.required("rect", rect);
        center = rect.center();
    }
    out.centerX = center.x;
    out.centerY = center.y;
}

void write(JsonWriter& json, const ZoomCurvePoint& point) {
    json.beginObject();
    json.field("id", point.id);
    json.field("time", point.time);
    json.field("zoomLevel", point.zoomLevel);
    json.endObject();
}

void read(JsonElement element, ZoomCurvePoint& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("id", out.id);
    record.required("time", out.time);
    record.required("zoomLevel", out.zoomLevel);
}

void write(JsonWriter& json, const ZoomKeyframe& keyframe) {
    json.beginObject();
    json.field("id", keyframe.id);
    json.field("timestamp", keyframe.timestamp);
    json.field("endTime", keyframe.endTime);
    json.field("rect", keyframe.rect);
    json.field("waypoints", keyframe.waypoints);
    json.field("zoomCurve", keyframe.zoomCurve);
    json.field("transitionDuration", keyframe.transitionDuration);
    json.field("easingType", keyframe.easingType);
    json.endObject();
}

void read(JsonElement element, ZoomKeyframe& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("id", out.id);
    record.required("timestamp", out.timestamp);
    record.optional("endTime", out.endTime);
    record.required("rect", out.rect);
    record.optional("waypoints", out.waypoints);
    record.optional("zoomCurve", out.zoomCurve);
    record.required("transitionDuration", out.transitionDuration);
    record.required("easingType", out.easingType);
}

} // namespace tavi
