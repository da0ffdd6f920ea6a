#include "project/TakeJournal.h"

#include "base/HexDigits.h"
#include "project/CursorEventJson.h"
#include "project/RecordingMetadataElement.h"

#include <utility>

namespace tavi {

namespace {

/// An image as its line tells of it.
struct JournaledImage {
    CursorImageInfo info;
    std::string digits;
};

void write(JsonWriter& json, const JournaledImage& image) {
    json.beginObject();
    json.field("info", image.info);
    json.field("bytes", image.digits);
    json.endObject();
}

void read(JsonElement element, JournaledImage& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.required("info", out.info);
    record.required("bytes", out.digits);
}

/// One line; of a sound one, at least one field is there unless a later program wrote it.
struct JournalLine {
    std::optional<RecordingMetadata> take;
    std::optional<JournaledImage> image;
    std::optional<CursorEvent> event;
    std::optional<double> elapsed;
};

void read(JsonElement element, JournalLine& out, std::string_view key, JsonFailure& failure) {
    JsonRecord record(element, key, failure);
    record.optional("take", out.take);
    record.optional("image", out.image);
    record.optional("event", out.event);
    record.optional("elapsed", out.elapsed);
}

template<typename T>
void appendLine(std::string& journal, std::string_view key, const T& content) {
    JsonWriter json;
    json.beginObject();
    json.field(key, content);
    json.endObject();
    if (const auto line = json.finish()) {
        journal += *line;
        journal += '\n';
    }
}

/// All but the lists, which stand in lines of their own.
void setFacts(RecordingMetadata& metadata, const RecordingMetadata& facts) {
    metadata.startDate = facts.startDate;
    metadata.duration = facts.duration;
    metadata.screenWidth = facts.screenWidth;
    metadata.screenHeight = facts.screenHeight;
    metadata.hasCameraRecording = facts.hasCameraRecording;
    metadata.hasAudioRecording = facts.hasAudioRecording;
    metadata.cameraStartDelay = facts.cameraStartDelay;
}

/// Adds what a line tells; false when it can't be used.
bool addLine(JournaledTake& take, JournalLine&& line) {
    if (line.take) {
        setFacts(take.metadata, *line.take);
    }
    if (line.image) {
        auto bytes = bytesOfHexDigits(line.image->digits);
        if (!bytes) {
            return false;
        }
        take.metadata.cursorImageInfos.push_back(line.image->info);
        take.cursorImageDatas.push_back(*std::move(bytes));
    }
    if (line.event) {
        take.metadata.cursorEvents.push_back(*std::move(line.event));
    }
    if (line.elapsed) {
        take.metadata.duration = *line.elapsed;
    }
    return true;
}

/// Takes the next whole line off the front; absent when none is left.
std::optional<std::string_view> nextLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    return line;
}

} // namespace

void appendTakeLine(std::string& journal, const RecordingMetadata& facts) {
    RecordingMetadata withoutLists;
    setFacts(withoutLists, facts);
    appendLine(journal, "take", withoutLists);
}

void appendImageLine(std::string& journal, const CursorImageInfo& info,
                     std::span<const std::uint8_t> bytes) {
    appendLine(journal, "image", JournaledImage{info, hexDigitsOf(bytes)});
}

void appendEventLine(std::string& journal, const CursorEvent& event) {
    appendLine(journal, "event", event);
}

void appendElapsedLine(std::string& journal, double seconds) {
    appendLine(journal, "elapsed", seconds);
}

std::optional<JournaledTake> decodeTakeJournal(std::string_view journal) {
    JsonDocument document;
    JournaledTake take;
    bool hasFacts = false;
    while (const auto text = nextLine(journal)) {
        auto line = decodeRecord<JournalLine>(document, *text);
        if (!line || (!hasFacts && !line->take) || !addLine(take, *std::move(line))) {
            break;
        }
        hasFacts = true;
    }
    return hasFacts ? std::optional(std::move(take)) : std::nullopt;
}

} // namespace tavi
