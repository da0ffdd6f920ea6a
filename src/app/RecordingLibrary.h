#pragma once

#include "base/Date.h"
#include "base/Uuid.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace tavi {

/// One take of the library.
struct RecordingItem {
    Uuid id = Uuid::make();    ///< Fresh at every scan.
    std::filesystem::path url; ///< The take's folder.
    Date date;                 ///< Start of the take, or the moment of the scan.
    double duration = 0;       ///< Seconds; 0 when it can't be read.
};

/// Completes the take in a folder if its recorder died (TakeRecovery::recover). Any thread, several
/// at once.
using RecoverTake = std::function<void(const std::filesystem::path& folder)>;

/// Scans a library folder for takes, newest first; takes of one date keep the
/// order of the listing.
///
/// Every folder that holds a `video.mov` is a take; hidden ones and plain files
/// are passed over. A take whose `metadata.json` is missing or broken is listed
/// all the same, with the date `now` and duration 0. A library that is missing
/// or can't be listed has no takes.
/// `recover`, if given, is called for every take before its sidecar is read.
/// Thread: any; reads the sidecars, and recovers, on as many threads as the machine has cores.
std::vector<RecordingItem> scanRecordings(const std::filesystem::path& recordingsDirectory,
                                          Date now, const RecoverTake& recover = {});

} // namespace tavi
