#pragma once

#include "project/RecordingMetadata.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// The journal of a take: what will be its sidecar and its cursor images, written while the take
/// runs, so that a take whose recorder died can be completed.
///
/// One JSON object a line, each with one of these keys; lines are only ever added:
///   "take"    all but the lists of a sidecar, with the duration so far; the last one counts;
///             it comes first
///   "image"   the next cursor image: its row of the table and its bytes in hexadecimal digits
///   "event"   the next event of the log
///   "elapsed" the duration so far, in seconds
///
/// Each function appends one line, with its end. A number that has no JSON form leaves the line
/// out, as it has no place in a sidecar either.
void appendTakeLine(std::string& journal, const RecordingMetadata& facts);
void appendImageLine(std::string& journal, const CursorImageInfo& info,
                     std::span<const std::uint8_t> bytes);
void appendEventLine(std::string& journal, const CursorEvent& event);
void appendElapsedLine(std::string& journal, double seconds);

/// What a journal tells of its take.
struct JournaledTake {
    RecordingMetadata metadata; ///< The duration is that of the last line.
    /// The bytes of each image, as many as there are rows in the table.
    std::vector<std::vector<std::uint8_t>> cursorImageDatas;

    bool operator==(const JournaledTake&) const = default;
};

/// Reads a journal up to its end or to the first line that is torn or damaged. Absent without a
/// whole "take" line in front.
std::optional<JournaledTake> decodeTakeJournal(std::string_view journal);

} // namespace tavi
