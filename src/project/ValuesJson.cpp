#include "project/ValuesJson.h"

namespace tavi {

namespace {

/// The first two elements of an array.
bool firstTwo(JsonElement element, JsonElement& first, JsonElement& second, std::string_view key,
              JsonFailure& failure) {
    simdjson::dom::array items;
    if (element.get(items) != simdjson::SUCCESS) {
        failure.set(JsonError::Kind::wrongType, key);
        return false;
    }
    auto item = items.begin();
    const auto end = items.end();
    if (!(item != end)) {
        failure.set(JsonError::Kind::badValue, key);
        return false;
    }
    first = *item;
    ++item;
    if (!(item != end)) {
        failure.set(JsonError::Kind::badValue, key);
        return false;
    }
    second = *item;
    return true;
}

void readPair(JsonElement element, double& first, double& second, std::string_view key,
              JsonFailure& failure) {
    JsonElement a;
    JsonElement b;
    if (firstTwo(element, a, b, key, failure)) {
        read(a, first, key, failure);
        read(b, second, key, failure);
    }
}

void writePair(JsonWriter& json, double first, double second) {
    json.beginArray();
    json.value(first);
    json.value(second);
    json.endArray();
}

} // namespace

void write(JsonWriter& json, const Uuid& id) {
    json.value(std::string_view(id.text()));
}

void write(JsonWriter& json, Date date) {
    json.value(date.sinceReference);
}

void write(JsonWriter& json, const Size& size) {
    writePair(json, size.width, size.height);
}

void write(JsonWriter& json, const Rect& rect) {
    json.beginArray();
    writePair(json, rect.x, rect.y);
    writePair(json, rect.width, rect.height);
    json.endArray();
}

void write(JsonWriter& json, const CodableColor& color) {
    json.beginObject();
    json.field("red", color.red);
    json.field("green", color.green);
    json.field("blue", color.blue);
    json.field("alpha", color.alpha);
    json.endObject();
}

void read(JsonElement element, Uuid& out, std::string_view key, JsonFailure& failure) {
    std::string_view text;
    if (element.get(text) != simdjson::SUCCESS) {
        failure.set(JsonError::Kind::wrongType, key);
    } else if (const auto id = Uuid::parse(text)) {
        out = *id;
    } else {
        failure.set(JsonError::Kind::badValue, key);
    }
}

void read(JsonElement element, Date& out, std::string_view key, JsonFailure& failure) {
    read(element, out.sinceReference, key, failure);
}

void read(JsonElement element, Size& out, std::string_view key, JsonFailure& failure) {
    readPair(element, out.width, out.height, key, failure);
}

void read(JsonElement element, Rect& out, std::string_view key, JsonFailure& failure) {
    JsonElement origin;
    JsonElement size;
    if (firstTwo(element, origin, size, key, failure)) {
        readPair(origin, out.x, out.y, key, failure);
        readPair(size, out.width, out.height, key, failure);
    }
}

void read(JsonElement element, CodableColor& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("red", out.red);
    record.required("green", out.green);
    record.required("blue", out.blue);
    record.required("alpha", out.alpha);
}

} // namespace tavi
