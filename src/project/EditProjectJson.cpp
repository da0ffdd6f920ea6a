#include "project/EditProjectJson.h"

#include "project/OptionsJson.h"
#include "project/TrimStateJson.h"
#include "project/ZoomKeyframeJson.h"

namespace tavi {

void read(JsonElement element, EditProject& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("recordingPath", out.recordingPath);
    record.required("keyframes", out.keyframes);
    record.required("outputSettings", out.outputSettings);
    record.required("cursorSettings", out.cursorSettings);
    record.optional("autoZoomSettings", out.autoZoomSettings);
    record.optional("appearanceSettings", out.appearanceSettings);
    record.optional("cameraSettings", out.cameraSettings);
    record.optional("trimState", out.trimState);
    if (!failure && out.recordingPath.empty()) {
        failure.set(JsonError::Kind::badValue, "recordingPath");
    }
}

Result<std::string, JsonError> encodeEditProject(const EditProject& project) {
    JsonWriter json;
    json.beginObject();
    json.field("recordingPath", project.recordingPath);
    json.key("keyframes");
    write(json, project.keyframes);
    json.field("outputSettings", project.outputSettings);
    json.field("cursorSettings", project.cursorSettings);
    json.field("autoZoomSettings", project.autoZoomSettings);
    json.field("appearanceSettings", project.appearanceSettings);
    json.field("cameraSettings", project.cameraSettings);
    json.field("trimState", project.trimState);
    json.endObject();
    return json.finish();
}

Result<EditProject, JsonError> decodeEditProject(std::string_view text) {
    return decodeRecord<EditProject>(text);
}

void write(JsonWriter& json, const std::vector<ZoomKeyframe>& keyframes) {
    json.beginArray();
    for (const ZoomKeyframe& keyframe : keyframes) {
        write(json, keyframe);
    }
    json.endArray();
}

} // namespace tavi
