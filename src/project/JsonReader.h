#pragma once

#include "project/Json.h"
#include "project/RawValue.h"

#include <simdjson.h>

#include <array>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace tavi {

using JsonElement = simdjson::dom::element;

/// The first failure of one decode; later ones are consequences and are dropped.
class JsonFailure {
public:
    void set(JsonError::Kind kind, std::string_view detail) {
        if (!m_error) {
            m_error = JsonError{kind, std::string(detail)};
        }
    }
    explicit operator bool() const { return m_error.has_value(); }
    const JsonError& error() const { return *m_error; }

private:
    std::optional<JsonError> m_error;
};

/// A parsed JSON text. Rules of reading, shared by every record: unknown keys
/// are ignored; of duplicate keys the last counts; null in an optional key counts
/// as absent; whole numbers may be written with a fraction of zero.
///
/// The parser's memory is kept and used again by the next parse of the object.
/// Thread: one at a time.
class JsonDocument {
public:
    /// Parses and validates all of `text`. The element lives until the next parse.
    Result<JsonElement, JsonError> parse(std::string_view text);

private:
    simdjson::dom::parser m_parser;
    std::vector<char> m_padded;
};

// One overload per type of field; each sets `failure` when the value doesn't fit.
// `key` names the field in the error.
void read(JsonElement element, double& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, bool& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, std::int64_t& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, std::uint64_t& out, std::string_view key, JsonFailure& failure);
void read(JsonElement element, std::string& out, std::string_view key, JsonFailure& failure);

/// An enum by its exact raw value.
template<typename Enum>
requires std::is_enum_v<Enum>
void read(JsonElement element, Enum& out, std::string_view key, JsonFailure& failure) {
    std::string_view text;
    if (element.get(text) != simdjson::SUCCESS) {
        failure.set(JsonError::Kind::wrongType, key);
    } else if (const auto value = fromRawValue<Enum>(text)) {
        out = *value;
    } else {
        failure.set(JsonError::Kind::badValue, key);
    }
}

template<typename T>
void read(JsonElement element, std::vector<T>& out, std::string_view key, JsonFailure& failure) {
    simdjson::dom::array items;
    if (element.get(items) != simdjson::SUCCESS) {
        failure.set(JsonError::Kind::wrongType, key);
        return;
    }
    out.clear();
    out.reserve(items.size());
    for (const JsonElement item : items) {
        read(item, out.emplace_back(), key, failure);
        if (failure) {
            return;
        }
    }
}

/// The fields of one JSON object, looked up by name.
class JsonRecord {
public:
    /// `name` names the object in the error when `element` is no object.
    JsonRecord(JsonElement element, std::string_view name, JsonFailure& failure);

    /// Reads a field that must be there.
    template<typename T>
    void required(std::string_view key, T& out) {
        if (const JsonElement* element = find(key)) {
            read(*element, out, key, m_failure);
        } else {
            m_failure.set(JsonError::Kind::missingKey, key);
        }
    }

    /// Reads a field that may be absent or null; `out` keeps its value then.
    template<typename T>
    void optional(std::string_view key, T& out) {
        const JsonElement* element = find(key);
        if (element && !element->is_null()) {
            read(*element, out, key, m_failure);
        }
    }

    template<typename T>
    void optional(std::string_view key, std::optional<T>& out) {
        const JsonElement* element = find(key);
        if (element && !element->is_null()) {
            read(*element, out.emplace(), key, m_failure);
        }
    }

private:
    struct Field {
        std::string_view key;
        JsonElement element;
    };
    static constexpr std::size_t kInlineFields = 16;

    /// The last field of that name.
    const JsonElement* find(std::string_view key) const;

    JsonFailure& m_failure;
    std::array<Field, kInlineFields> m_inline;
    std::size_t m_count = 0;
    std::vector<Field> m_overflow; ///< Fields beyond those that fit inline.
};

/// Parses a text whose root is one record.
template<typename T>
Result<T, JsonError> decodeRecord(JsonDocument& document, std::string_view json) {
    const auto root = document.parse(json);
    if (!root) {
        return fail(root.error());
    }
    T record;
    JsonFailure failure;
    read(*root, record, "the file", failure);
    if (failure) {
        return fail(failure.error());
    }
    return record;
}

template<typename T>
Result<T, JsonError> decodeRecord(std::string_view json) {
    JsonDocument document;
    return decodeRecord<T>(document, json);
}

} // namespace tavi
