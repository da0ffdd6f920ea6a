#include "project/KeyLineJson.h"

#include <simdjson.h>

#include <cmath>

namespace tavi {

namespace {

std::optional<std::uint64_t> unsignedInteger(simdjson::dom::element value) {
    if (std::uint64_t whole = 0; value.get_uint64().get(whole) == simdjson::SUCCESS) {
        return whole;
    }
    constexpr double kEndOfUnsigned = 18446744073709551616.0;
    double number = 0;
    if (!value.is_double() || value.get_double().get(number) != simdjson::SUCCESS) {
        return std::nullopt;
    }
    const bool isWhole = number >= 0 && number < kEndOfUnsigned && std::floor(number) == number;
    return isWhole ? std::optional(static_cast<std::uint64_t>(number)) : std::nullopt;
}

} // namespace

std::optional<KeyLine> parseKeyLine(std::string_view line) {
    simdjson::dom::parser parser;
    simdjson::dom::object object;
    if (parser.parse(line.data(), line.size()).get_object().get(object) != simdjson::SUCCESS) {
        return std::nullopt;
    }
    std::string_view character;
    if (object["t"].error() != simdjson::SUCCESS ||
        object["c"].get_string().get(character) != simdjson::SUCCESS) {
        return std::nullopt;
    }
    KeyLine key{std::string(character), std::nullopt};
    if (simdjson::dom::element modifiers; object["m"].get(modifiers) == simdjson::SUCCESS) {
        key.modifiers = unsignedInteger(modifiers);
    }
    return key;
}

} // namespace tavi
