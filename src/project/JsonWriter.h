#pragma once

#include "project/Json.h"

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// Writes one JSON text in the exact form of the program's files: compact, keys
/// in the order they are given, "/" escaped as "\/", text in UTF-8.
///
/// Numbers: whole doubles without a fraction, others with the fewest digits that
/// read back to the same double, without exponent for magnitudes from 1e-5 up to
/// 1e16. A number that is not finite fails the whole text.
class JsonWriter {
public:
    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    void key(std::string_view name);

    void value(double number);
    void value(bool flag);
    void value(std::string_view text);
    void value(const char* text) { value(std::string_view(text)); }
    void null();
    template<std::integral T>
    requires(!std::same_as<T, bool>) void value(T number) { integer(std::to_string(number)); }

    template<typename T>
    void field(std::string_view name, const T& content) {
        key(name);
        write(*this, content);
    }

    /// The text, or the first failure. Leaves the writer empty.
    Result<std::string, JsonError> finish();

private:
    void open(char bracket);
    void close(char bracket);
    void separate();
    void integer(std::string_view digits);
    void appendEscaped(std::string_view text);

    std::string m_text;
    std::string m_key; ///< The key written last, for the error.
    bool m_needsComma = false;
    std::optional<JsonError> m_error;
};

inline void write(JsonWriter& json, double v) {
    json.value(v);
}
inline void write(JsonWriter& json, bool v) {
    json.value(v);
}
inline void write(JsonWriter& json, std::int64_t v) {
    json.value(v);
}
inline void write(JsonWriter& json, std::uint64_t v) {
    json.value(v);
}
inline void write(JsonWriter& json, const std::string& v) {
    json.value(std::string_view(v));
}

template<typename T>
void write(JsonWriter& json, const std::vector<T>& items) {
    json.beginArray();
    for (const T& item : items) {
        write(json, item);
    }
    json.endArray();
}

/// Appends `number` (finite) in the form told above.
void appendNumber(std::string& text, double number);

} // namespace tavi
