#include "project/JsonReader.h"

#include <cmath>
#include <cstring>

namespace tavi {

namespace {

/// A day of recording is about 700 MB of log; beyond this it is no sidecar.
constexpr std::size_t kLargestText = std::size_t{2} << 30;

/// 2^63 and 2^64 as doubles: the first values outside int64 and uint64.
constexpr double kInt64End = 9223372036854775808.0;
constexpr double kUint64End = 18446744073709551616.0;

/// Digits that surely fit 64 bits; longer runs are handed to the parser as doubles.
constexpr std::size_t kSafeDigits = 18;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The parser refuses whole numbers beyond 64 bits though a double holds them.
/// Gives each long run of digits that ends its number the exponent "e0", which
/// keeps its value and makes it a double.
std::string withLongIntegersAsDoubles(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 64);
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        out += c;
        if (inString) {
            if (c == '\\' && i + 1 < text.size()) {
                out += text[++i];
            } else if (c == '"') {
                inString = false;
            }
            continue;
        }
        if (c == '"') {
            inString = true;
        }
        const bool startsNumber =
            isDigit(c) && (i == 0 || std::strchr("+.eE", text[i - 1]) == nullptr);
        if (!startsNumber) {
            continue;
        }
        std::size_t end = i + 1;
        while (end < text.size() && isDigit(text[end])) {
            out += text[end++];
        }
        const bool whole = end == text.size() || std::strchr(".eE", text[end]) == nullptr;
        if (whole && end - i > kSafeDigits) {
            out += "e0";
        }
        i = end - 1;
    }
    return out;
}

} // namespace

Result<JsonElement, JsonError> JsonDocument::parse(std::string_view text) {
    if (text.size() > kLargestText) {
        return fail(JsonError{JsonError::Kind::tooLarge, std::to_string(text.size()) + " bytes"});
    }
    JsonElement root;
    const auto attempt = [&](std::string_view json) {
        m_padded.resize(json.size() + simdjson::SIMDJSON_PADDING);
        std::memcpy(m_padded.data(), json.data(), json.size());
        return m_parser.parse(m_padded.data(), json.size(), false).get(root);
    };
    auto status = attempt(text);
    if (status == simdjson::NUMBER_ERROR) {
        status = attempt(withLongIntegersAsDoubles(text));
    }
    if (status != simdjson::SUCCESS) {
        return fail(JsonError{JsonError::Kind::syntax, simdjson::error_message(status)});
    }
    return root;
}

void read(JsonElement element, double& out, std::string_view key, JsonFailure& failure) {
    if (element.get(out) != simdjson::SUCCESS) {
        failure.set(JsonError::Kind::wrongType, key);
    }
}

void read(JsonElement element, bool& out, std::string_view key, JsonFailure& failure) {
    if (element.get(out) != simdjson::SUCCESS) {
        failure.set(JsonError::Kind::wrongType, key);
    }
}

void read(JsonElement element, std::int64_t& out, std::string_view key, JsonFailure& failure) {
    if (element.get(out) == simdjson::SUCCESS) {
        return;
    }
    double number = 0;
    if (element.get(number) == simdjson::SUCCESS && number == std::trunc(number) &&
        number >= -kInt64End && number < kInt64End) {
        out = static_cast<std::int64_t>(number);
    } else {
        failure.set(JsonError::Kind::wrongType, key);
    }
}

void read(JsonElement element, std::uint64_t& out, std::string_view key, JsonFailure& failure) {
    if (element.get(out) == simdjson::SUCCESS) {
        return;
    }
    double number = 0;
    if (element.get(number) == simdjson::SUCCESS && number == std::trunc(number) && number >= 0 &&
        number < kUint64End) {
        out = static_cast<std::uint64_t>(number);
    } else {
        failure.set(JsonError::Kind::wrongType, key);
    }
}

void read(JsonElement element, std::string& out, std::string_view key, JsonFailure& failure) {
    std::string_view text;
    if (element.get(text) == simdjson::SUCCESS) {
        out = text;
    } else {
        failure.set(JsonError::Kind::wrongType, key);
    }
}

JsonRecord::JsonRecord(JsonElement element, std::string_view name, JsonFailure& failure)
    : m_failure(failure) {
    simdjson::dom::object object;
    if (element.get(object) != simdjson::SUCCESS) {
        failure.set(JsonError::Kind::wrongType, name);
        return;
    }
    for (const auto field : object) {
        if (m_count < kInlineFields) {
            m_inline[m_count++] = {field.key, field.value};
        } else {
            m_overflow.push_back({field.key, field.value});
        }
    }
}

const JsonElement* JsonRecord::find(std::string_view key) const {
    for (std::size_t i = m_overflow.size(); i-- > 0;) {
        if (m_overflow[i].key == key) {
            return &m_overflow[i].element;
        }
    }
    for (std::size_t i = m_count; i-- > 0;) {
        if (m_inline[i].key == key) {
            return &m_inline[i].element;
        }
    }
    return nullptr;
}

} // namespace tavi
