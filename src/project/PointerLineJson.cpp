#include "project/PointerLineJson.h"

#include <simdjson.h>

#include <limits>

namespace tavi {

namespace {

bool isOfButtonOrWheel(CursorEventType type) {
    return type == CursorEventType::leftMouseDown || type == CursorEventType::leftMouseUp ||
           type == CursorEventType::rightClick || type == CursorEventType::scroll;
}

} // namespace

std::optional<PointerLine> parsePointerLine(std::string_view line) {
    constexpr std::uint64_t kNanosecondsEach = 1000;
    constexpr std::uint64_t kLatest = std::numeric_limits<std::int64_t>::max() / kNanosecondsEach;
    simdjson::dom::parser parser;
    simdjson::dom::object object;
    std::uint64_t microseconds = 0;
    std::string_view name;
    if (parser.parse(line.data(), line.size()).get_object().get(object) != simdjson::SUCCESS ||
        object["t"].get_uint64().get(microseconds) != simdjson::SUCCESS ||
        object["p"].get_string().get(name) != simdjson::SUCCESS) {
        return std::nullopt;
    }
    const auto type = fromRawValue<CursorEventType>(name);
    if (!type || !isOfButtonOrWheel(*type) || microseconds > kLatest) {
        return std::nullopt;
    }
    return PointerLine{*type, MediaTime::fromNanoseconds(
                                  static_cast<std::int64_t>(microseconds * kNanosecondsEach))};
}

} // namespace tavi
