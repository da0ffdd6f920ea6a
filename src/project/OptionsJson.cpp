#include "project/OptionsJson.h"

namespace tavi {

void write(JsonWriter& json, const OutputSettings& settings) {
    json.beginObject();
    json.field("resolution", settings.resolution);
    json.field("fps", settings.fps);
    json.field("autoAspectRatio", settings.autoAspectRatio);
    json.endObject();
}

void read(JsonElement element, OutputSettings& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("resolution", out.resolution);
    record.required("fps", out.fps);
    record.optional("autoAspectRatio", out.autoAspectRatio);
}

void write(JsonWriter& json, const CursorSettings& settings) {
    json.beginObject();
    json.field("showCursor", settings.showCursor);
    json.field("cursorSize", settings.cursorSize);
    json.field("cursorStyle", settings.cursorStyle);
    json.field("showClickEffect", settings.showClickEffect);
    json.field("smoothingPreset", settings.smoothingPreset);
    json.field("showKeystrokes", settings.showKeystrokes);
    json.field("keystrokeDisplayDuration", settings.keystrokeDisplayDuration);
    json.field("keystrokeSize", settings.keystrokeSize);
    json.endObject();
}

void read(JsonElement element, CursorSettings& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.optional("showCursor", out.showCursor);
    record.optional("cursorSize", out.cursorSize);
    record.optional("cursorStyle", out.cursorStyle);
    record.optional("showClickEffect", out.showClickEffect);
    record.optional("smoothingPreset", out.smoothingPreset);
    record.optional("showKeystrokes", out.showKeystrokes);
    record.optional("keystrokeDisplayDuration", out.keystrokeDisplayDuration);
    record.optional("keystrokeSize", out.keystrokeSize);
}

void write(JsonWriter& json, const AppearanceSettings& settings) {
    json.beginObject();
    json.field("backgroundStyle", settings.backgroundStyle);
    json.field("solidColor", settings.solidColor);
    json.field("gradientPresetIndex", settings.gradientPresetIndex);
    json.field("blurRadius", settings.blurRadius);
    json.field("wallpaperPreset", settings.wallpaperPreset);
    json.field("animateBackground", settings.animateBackground);
    json.field("padding", settings.padding);
    json.field("cornerRadius", settings.cornerRadius);
    json.field("shadowEnabled", settings.shadowEnabled);
    json.field("shadowRadius", settings.shadowRadius);
    json.field("shadowOpacity", settings.shadowOpacity);
    json.endObject();
}

void read(JsonElement element, AppearanceSettings& out, std::string_view key,
          JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("backgroundStyle", out.backgroundStyle);
    record.required("solidColor", out.solidColor);
    record.required("gradientPresetIndex", out.gradientPresetIndex);
    record.required("blurRadius", out.blurRadius);
    record.required("wallpaperPreset", out.wallpaperPreset);
    record.required("animateBackground", out.animateBackground);
    record.required("padding", out.padding);
    record.required("cornerRadius", out.cornerRadius);
    record.required("shadowEnabled", out.shadowEnabled);
    record.required("shadowRadius", out.shadowRadius);
    record.required("shadowOpacity", out.shadowOpacity);
}

void write(JsonWriter& json, const CameraSettings& settings) {
    json.beginObject();
    json.field("enabled", settings.enabled);
    json.field("position", settings.position);
    json.field("sizeFraction", settings.sizeFraction);
    json.field("marginFraction", settings.marginFraction);
    json.field("borderWidth", settings.borderWidth);
    json.field("borderColor", settings.borderColor);
    json.field("shadowEnabled", settings.shadowEnabled);
    json.field("cornerRadius", settings.cornerRadius);
    json.endObject();
}

void read(JsonElement element, CameraSettings& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("enabled", out.enabled);
    record.required("position", out.position);
    record.required("sizeFraction", out.sizeFraction);
    record.required("marginFraction", out.marginFraction);
    record.required("borderWidth", out.borderWidth);
    record.required("borderColor", out.borderColor);
    record.required("shadowEnabled", out.shadowEnabled);
    record.required("cornerRadius", out.cornerRadius);
}

void write(JsonWriter& json, const AutoZoomSettings& settings) {
    json.beginObject();
    json.field("aggressiveness", settings.aggressiveness);
    json.field("useTemporalDiff", settings.useTemporalDiff);
    json.endObject();
}

void read(JsonElement element, AutoZoomSettings& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("aggressiveness", out.aggressiveness);
    record.required("useTemporalDiff", out.useTemporalDiff);
}

} // namespace tavi
