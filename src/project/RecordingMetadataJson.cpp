#include "project/RecordingMetadataJson.h"

#include "project/CursorEventJson.h"
#include "project/RecordingMetadataElement.h"

namespace tavi {

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

namespace {

/// Stands in for a list whose items are only to be checked.
template<typename T>
struct Checked {};

template<typename T>
void read(JsonElement element, Checked<T>&, std::string_view key, JsonFailure& failure) {
    simdjson::dom::array items;
    if (element.get(items) != simdjson::SUCCESS) {
        failure.set(JsonError::Kind::wrongType, key);
        return;
    }
    for (const JsonElement item : items) {
        T scratch;
        read(item, scratch, key, failure);
        if (failure) {
            return;
        }
    }
}

/// The fields of a sidecar, its two lists being either kept or checked only.
template<typename Events, typename Images>
void readFields(JsonElement element, RecordingMetadata& out, Events& events, Images& images,
                std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("startDate", out.startDate);
    record.required("duration", out.duration);
    record.required("screenWidth", out.screenWidth);
    record.required("screenHeight", out.screenHeight);
    record.required("cursorEvents", events);
    record.optional("cursorImageInfos", images);
    record.optional("hasCameraRecording", out.hasCameraRecording);
    record.optional("hasAudioRecording", out.hasAudioRecording);
    record.optional("cameraStartDelay", out.cameraStartDelay);
}

} // namespace

void read(JsonElement element, RecordingMetadata& out, std::string_view key, JsonFailure& failure) {
    readFields(element, out, out.cursorEvents, out.cursorImageInfos, key, failure);
}

Result<std::string, JsonError> encodeRecordingMetadata(const RecordingMetadata& metadata) {
    JsonWriter json;
    write(json, metadata);
    return json.finish();
}

Result<RecordingMetadata, JsonError> decodeRecordingMetadata(std::string_view text) {
    return decodeRecord<RecordingMetadata>(text);
}

struct MetadataDecoder::Impl {
    JsonDocument document;
};

MetadataDecoder::MetadataDecoder() : m_impl(std::make_unique<Impl>()) {}

MetadataDecoder::~MetadataDecoder() = default;

Result<RecordingSummary, JsonError> MetadataDecoder::decodeSummary(std::string_view json) {
    const auto root = m_impl->document.parse(json);
    if (!root) {
        return fail(root.error());
    }
    RecordingMetadata head;
    Checked<CursorEvent> events;
    Checked<CursorImageInfo> images;
    JsonFailure failure;
    readFields(*root, head, events, images, "the file", failure);
    if (failure) {
        return fail(failure.error());
    }
    return RecordingSummary{head.startDate, head.duration};
}

} // namespace tavi
