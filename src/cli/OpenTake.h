#pragma once

#include "media/MediaLibrary.h"
#include "project/EditProject.h"

#include <filesystem>
#include <string>

namespace tavi::cli {

/// A take that a command works on.
struct OpenTake {
    std::filesystem::path folder;
    EditProject project; ///< With the derived fields; `recordingPath` as stored.
    Asset asset;         ///< Of `video.mov`; holds a video track.

    Size videoSize() const { return asset.videoTracks.front().naturalSize; }
    double duration() const { return asset.duration.seconds(); }
};

/// The folder that a command line names: a path, or the name of a take in the library.
std::filesystem::path takeFolder(const std::string& argument);

/// Opens a take; one whose recorder died is completed first. The error is a sentence for the user
/// that names the file.
Result<OpenTake, std::string> openTake(const std::string& argument, MediaLibrary& media);

} // namespace tavi::cli
