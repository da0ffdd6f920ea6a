#include "project/JsonWriter.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace tavi {

namespace {

// Magnitudes in this range are written without an exponent.
constexpr double kSmallestPlain = 1e-5;
constexpr double kLargestPlain = 1e16;

constexpr std::string_view kHexDigits = "0123456789abcdef";

/// The short escape of a character, empty where it has none.
std::string_view shortEscape(char c) {
    switch (c) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '/':
        return "\\/";
    case '\b':
        return "\\b";
    case '\f':
        return "\\f";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return {};
    }
}

} // namespace

void appendNumber(std::string& text, double number) {
    const double magnitude = std::fabs(number);
    const bool plain = number == 0 || (magnitude >= kSmallestPlain && magnitude < kLargestPlain);
    std::array<char, 64> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number,
                      plain ? std::chars_format::fixed : std::chars_format::scientific);
    text.append(digits.data(), end.ptr);
}

void JsonWriter::key(std::string_view name) {
    separate();
    appendEscaped(name);
    m_text += ':';
    m_key = name;
    m_needsComma = false;
}

void JsonWriter::value(double number) {
    if (!std::isfinite(number)) {
        if (!m_error) {
            m_error = JsonError{JsonError::Kind::notFinite, m_key};
        }
        number = 0;
    }
    separate();
    appendNumber(m_text, number);
    m_needsComma = true;
}

void JsonWriter::value(bool flag) {
    integer(flag ? "true" : "false");
}

void JsonWriter::null() {
    integer("null");
}

void JsonWriter::value(std::string_view text) {
    separate();
    appendEscaped(text);
    m_needsComma = true;
}

Result<std::string, JsonError> JsonWriter::finish() {
    m_needsComma = false;
    const auto error = std::exchange(m_error, std::nullopt);
    std::string text = std::exchange(m_text, {});
    if (error) {
        return fail(*error);
    }
    return text;
}

void JsonWriter::open(char bracket) {
    separate();
    m_text += bracket;
    m_needsComma = false;
}

void JsonWriter::close(char bracket) {
    m_text += bracket;
    m_needsComma = true;
}

void JsonWriter::separate() {
    if (m_needsComma) {
        m_text += ',';
    }
}

void JsonWriter::integer(std::string_view digits) {
    separate();
    m_text += digits;
    m_needsComma = true;
}

void JsonWriter::appendEscaped(std::string_view text) {
    m_text += '"';
    for (const char c : text) {
        if (const auto escape = shortEscape(c); !escape.empty()) {
            m_text += escape;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            m_text += "\\u00";
            m_text += kHexDigits[static_cast<unsigned char>(c) >> 4];
            m_text += kHexDigits[static_cast<unsigned char>(c) & 0x0f];
        } else {
            m_text += c;
        }
    }
    m_text += '"';
}

} // namespace tavi
