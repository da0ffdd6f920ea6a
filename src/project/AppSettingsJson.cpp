#include "project/AppSettingsJson.h"

#include "project/OptionsJson.h"

namespace tavi {

void read(JsonElement element, AppSettings& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("defaultCameraEnabled", out.defaultCameraEnabled);
    record.required("defaultAudioEnabled", out.defaultAudioEnabled);
    record.required("outputSettings", out.outputSettings);
    record.required("cursorSettings", out.cursorSettings);
    record.required("appearanceSettings", out.appearanceSettings);
    record.required("cameraSettings", out.cameraSettings);
    record.required("autoZoomSettings", out.autoZoomSettings);
}

Result<std::string, JsonError> encodeAppSettings(const AppSettings& settings) {
    JsonWriter json;
    json.beginObject();
    json.field("defaultCameraEnabled", settings.defaultCameraEnabled);
    json.field("defaultAudioEnabled", settings.defaultAudioEnabled);
    json.field("outputSettings", settings.outputSettings);
    json.field("cursorSettings", settings.cursorSettings);
    json.field("appearanceSettings", settings.appearanceSettings);
    json.field("cameraSettings", settings.cameraSettings);
    json.field("autoZoomSettings", settings.autoZoomSettings);
    json.endObject();
    return json.finish();
}

Result<AppSettings, JsonError> decodeAppSettings(std::string_view text) {
    return decodeRecord<AppSettings>(text);
}

} // namespace tavi
