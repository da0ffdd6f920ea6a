#include "project/CursorEventJson.h"

namespace tavi {

void write(JsonWriter& json, const CursorEvent& event) {
    json.beginObject();
    json.field("timestamp", event.timestamp);
    json.field("x", event.x);
    json.field("y", event.y);
    json.field("eventType", event.eventType);
    json.field("cursorImageId", event.cursorImageId);
    if (event.keyCharacter) {
        json.field("keyCharacter", *event.keyCharacter);
    }
    if (event.keyModifiers) {
        json.field("keyModifiers", *event.keyModifiers);
    }
    json.endObject();
}

void read(JsonElement element, CursorEvent& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("timestamp", out.timestamp);
    record.required("x", out.x);
    record.required("y", out.y);
    record.required("eventType", out.eventType);
    record.required("cursorImageId", out.cursorImageId);
    record.optional("keyCharacter", out.keyCharacter);
    record.optional("keyModifiers", out.keyModifiers);
}

void write(JsonWriter& json, const CursorImageInfo& info) {
    json.beginObject();
    json.field("hotspotX", info.hotspotX);
    json.field("hotspotY", info.hotspotY);
    json.field("width", info.width);
    json.field("height", info.height);
    json.endObject();
}

void read(JsonElement element, CursorImageInfo& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("hotspotX", out.hotspotX);
    record.required("hotspotY", out.hotspotY);
    record.required("width", out.width);
    record.required("height", out.height);
}

} // namespace tavi
