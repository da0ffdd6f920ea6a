#include "project/RecordingMetadataJson.h"

#include "project/CursorEventJson.h"

namespace tavi {

namespace {

void write(JsonWriter& json, const RecordingMetadata& metadata) {
    json.beginObject();
    json.field("startDate", metadata.startDate);
    json.field("duration", metadata.duration);
    json.field("screenWidth", metadata.screenWidth);
    json.field("screenHeight", metadata.screenHeight);
    json.field("cursorEvents", metadata.cursorEvents);
    json.field("cursorImageInfos", metadata.cursorImageInfos);
    json.field("hasCameraRecording", metadata.hasCameraRecording);
    json.field("hasAudioRecording", metadata.hasAudioRecording);
    json.field("cameraStartDelay", metadata.cameraStartDelay);
    json.endObject();
}

} // namespace

void read(JsonElement element, RecordingMetadata& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("startDate", out.startDate);
    record.required("duration", out.duration);
    record.required("screenWidth", out.screenWidth);
    record.required("screenHeight", out.screenHeight);
    record.required("cursorEvents", out.cursorEvents);
    record.optional("cursorImageInfos", out.cursorImageInfos);
    record.optional("hasCameraRecording", out.hasCameraRecording);
    record.optional("hasAudioRecording", out.hasAudioRecording);
    record.optional("cameraStartDelay", out.cameraStartDelay);
}

Result<std::string, JsonError> encodeRecordingMetadata(const RecordingMetadata& metadata) {
    JsonWriter json;
    write(json, metadata);
    return json.finish();
}

Result<RecordingMetadata, JsonError> decodeRecordingMetadata(std::string_view text) {
    return decodeRecord<RecordingMetadata>(text);
}

} // namespace tavi
