#pragma once

#include "project/Json.h"
#include "project/RecordingMetadata.h"

#include <memory>
#include <string>
#include <string_view>

namespace tavi {

/// `metadata.json` as text: compact, keys in the order of the fields. Fails only
/// for a number that is not finite.
Result<std::string, JsonError> encodeRecordingMetadata(const RecordingMetadata& metadata);

/// Reads `metadata.json`. A missing required key, a wrong type or an unknown
/// event type fails the whole.
Result<RecordingMetadata, JsonError> decodeRecordingMetadata(std::string_view json);

/// What a list of takes shows of a sidecar.
struct RecordingSummary {
    Date startDate;
    double duration = 0; ///< Seconds.
};

/// Reads many sidecars with one parser's memory. Thread: one at a time.
class MetadataDecoder {
public:
    MetadataDecoder();
    ~MetadataDecoder();

    /// Checks all of a sidecar as decodeRecordingMetadata() does, but keeps no log.
    Result<RecordingSummary, JsonError> decodeSummary(std::string_view json);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace tavi
