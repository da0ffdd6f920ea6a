#pragma once

#include "base/Date.h"
#include "base/Geometry.h"
#include "base/Uuid.h"
#include "project/CodableColor.h"
#include "project/JsonReader.h"
#include "project/JsonWriter.h"

namespace tavi {

// The JSON forms of the values that several records hold.

void write(JsonWriter& json, const Uuid& id);            ///< "8-4-4-4-12", upper case.
void write(JsonWriter& json, Date date);                 ///< Seconds since 2001-01-01 UTC.
void write(JsonWriter& json, const Size& size);          ///< [width,height]
void write(JsonWriter& json, const Rect& rect);          ///< [[x,y],[width,height]]
void write(JsonWriter& json, const CodableColor& color); ///< An object of four numbers.

template<typename Enum>
requires std::is_enum_v<Enum>
void write(JsonWriter& json, Enum value) {
    json.value(rawValue(value));
}

// Arrays with too few elements fail; further elements are ignored.
void read(JsonElement element, Uuid& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, Date& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, Size& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, Rect& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, CodableColor& out, std::string_view key, JsonFailure& failure);

} // namespace tavi
