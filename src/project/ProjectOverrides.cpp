#include "project/ProjectOverrides.h"

#include "project/EditProjectJson.h"
#include "project/JsonReader.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>

namespace tavi {

namespace {

constexpr std::string_view kPathKey = "recordingPath"; // says where the take is; no option

std::string quoted(std::string_view text) {
    JsonWriter json;
    json.value(text);
    return json.finish().value_or("\"\"");
}

/// Appends the dotted path of every value below `object`; lists count as values.
void collectKeys(simdjson::dom::object object, const std::string& prefix,
                 std::vector<std::string>& keys) {
    for (const auto field : object) {
        const std::string path = prefix + std::string(field.key);
        simdjson::dom::object inner;
        if (field.value.get(inner) == simdjson::SUCCESS) {
            collectKeys(inner, path + ".", keys);
        } else if (path != kPathKey) {
            keys.push_back(path);
        }
    }
}

bool isSize(std::string_view text) {
    const auto cross = text.find('x');
    const auto isNumber = [](std::string_view part) {
        return !part.empty() && std::all_of(part.begin(), part.end(),
                                            [](unsigned char c) { return std::isdigit(c) != 0; });
    };
    return cross != std::string_view::npos && isNumber(text.substr(0, cross)) &&
           isNumber(text.substr(cross + 1));
}

/// The JSON text of a value as a person writes it.
std::string jsonOf(std::string_view value) {
    if (isSize(value)) {
        const auto cross = value.find('x');
        return fmt::format("[{},{}]", value.substr(0, cross), value.substr(cross + 1));
    }
    JsonDocument document;
    const auto parsed = document.parse(value);
    return parsed && !parsed->is_string() ? std::string(value) : quoted(value);
}

/// `object` as text with the value at `path` replaced, or added where it is absent.
std::string patched(simdjson::dom::object object, std::string_view path, const std::string& json) {
    const auto dot = path.find('.');
    const std::string_view key = path.substr(0, dot);
    std::string text = "{";
    const auto append = [&](std::string_view name, const std::string& content) {
        text += (text.size() > 1 ? "," : "") + quoted(name) + ":" + content;
    };
    bool isFound = false;
    for (const auto field : object) {
        if (field.key != key) {
            append(field.key, simdjson::minify(field.value));
            continue;
        }
        isFound = true;
        simdjson::dom::object inner;
        const bool isInside =
            dot != std::string_view::npos && field.value.get(inner) == simdjson::SUCCESS;
        append(key, isInside ? patched(inner, path.substr(dot + 1), json) : json);
    }
    if (!isFound) {
        append(key, json);
    }
    return text + "}";
}

/// The names that an option takes; empty for an option that is no enum.
std::vector<std::string_view> namesOf(std::string_view key) {
    const auto list = [](const auto& names) {
        return std::vector<std::string_view>(names.begin(), names.end());
    };
    if (key == "cursorSettings.cursorStyle") {
        return list(RawValues<CursorStyle>::names);
    }
    if (key == "cursorSettings.smoothingPreset") {
        return list(RawValues<CursorSmoothingPreset>::names);
    }
    if (key == "cursorSettings.keystrokeSize") {
        return list(RawValues<KeystrokeSize>::names);
    }
    if (key == "appearanceSettings.backgroundStyle") {
        return list(RawValues<BackgroundStyle>::names);
    }
    if (key == "appearanceSettings.wallpaperPreset") {
        return list(RawValues<WallpaperPreset>::names);
    }
    return key == "cameraSettings.position" ? list(RawValues<CameraPosition>::names)
                                            : std::vector<std::string_view>{};
}

std::string badValue(std::string_view key, std::string_view value) {
    const auto names = namesOf(key);
    const std::string hint =
        names.empty() ? "" : fmt::format("; it takes \"{}\"", fmt::join(names, "\", \""));
    return fmt::format("The option {} can't be \"{}\"{}", key, value, hint);
}

} // namespace

std::vector<std::string> projectOptionKeys() {
    EditProject project;
    project.trimState.outPoint = 0; // so that this key is there
    std::vector<std::string> keys;
    const auto text = encodeEditProject(project);
    JsonDocument document;
    const auto root = text ? document.parse(*text) : fail(text.error());
    simdjson::dom::object object;
    if (root && root->get(object) == simdjson::SUCCESS) {
        collectKeys(object, "", keys);
    }
    return keys;
}

Result<void, std::string> setProjectOption(EditProject& project, std::string_view key,
                                           std::string_view value) {
    const auto keys = projectOptionKeys();
    if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
        return fail(
            fmt::format("There is no option \"{}\"; there are {}", key, fmt::join(keys, ", ")));
    }
    const auto text = encodeEditProject(project);
    JsonDocument document;
    const auto root = text ? document.parse(*text) : fail(text.error());
    simdjson::dom::object object;
    if (!root || root->get(object) != simdjson::SUCCESS) {
        return fail(
            fmt::format("The option {} can't be set: the project can't be written as JSON", key));
    }
    auto decoded = decodeEditProject(patched(object, key, jsonOf(value)));
    if (!decoded) {
        return fail(badValue(key, value));
    }
    decoded->cursorEvents = std::move(project.cursorEvents);
    decoded->cursorImageInfos = std::move(project.cursorImageInfos);
    decoded->cursorImages = std::move(project.cursorImages);
    decoded->videoHeight = project.videoHeight;
    decoded->cameraStartDelay = project.cameraStartDelay;
    project = *std::move(decoded);
    return {};
}

Result<void, std::string> setProjectOption(EditProject& project, std::string_view assignment) {
    const auto equals = assignment.find('=');
    if (equals == std::string_view::npos) {
        return fail(fmt::format("\"{}\" sets nothing; write KEY=VALUE", assignment));
    }
    return setProjectOption(project, assignment.substr(0, equals), assignment.substr(equals + 1));
}

} // namespace tavi
