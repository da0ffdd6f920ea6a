#pragma once

#include "base/Message.h"
#include "base/Result.h"

#include <filesystem>
#include <string>

namespace tavi {

/// Why a take's folder could not be changed.
struct RecordingFileError {
    enum class Kind {
        notFound,  ///< It is not there any more.
        noVideo,   ///< It is there, without a video.
        nameTaken, ///< Something of the new name is there.
        failed,    ///< The system says no.
    };

    Kind kind = Kind::failed;
    std::filesystem::path path; ///< What it happened to.
    std::string detail;         ///< The system's own words.

    Message message() const;
    std::string description() const { return message().english(); }
};

/// Looks whether there is a take to open. Thread: any.
Result<void, RecordingFileError> findRecording(const std::filesystem::path& folder);

/// Removes a take's folder with everything in it. What was removed before a failure stays removed.
/// Thread: any.
Result<void, RecordingFileError> removeRecording(const std::filesystem::path& folder);

/// Moves a take's folder to another name; never over something that is there. Thread: any.
Result<void, RecordingFileError> moveRecording(const std::filesystem::path& folder,
                                               const std::filesystem::path& destination);

} // namespace tavi
