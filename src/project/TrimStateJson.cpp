#include "project/TrimStateJson.h"

namespace tavi {

void write(JsonWriter& json, const TimeRange& range) {
    json.beginObject();
    json.field("id", range.id);
    json.field("start", range.start);
    json.field("end", range.end);
    json.endObject();
}

void read(JsonElement element, TimeRange& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("id", out.id);
    record.required("start", out.start);
    record.required("end", out.end);
}

void write(JsonWriter& json, const TrimState& trim) {
    json.beginObject();
    json.field("inPoint", trim.inPoint);
    if (trim.outPoint) {
        json.field("outPoint", *trim.outPoint);
    }
    json.field("cutSegments", trim.cutSegments);
    json.endObject();
}

void read(JsonElement element, TrimState& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("inPoint", out.inPoint);
    record.optional("outPoint", out.outPoint);
    record.required("cutSegments", out.cutSegments);
}

} // namespace tavi
