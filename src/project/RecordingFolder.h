#pragma once

#include "base/Date.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace tavi {

/// The library: the folder "Tavlin" in the user's documents. It holds one folder
/// per take and `settings.json`.
///
/// Documents are $TAVI_DOCUMENTS_DIR, else $XDG_DOCUMENTS_DIR, else what
/// user-dirs.dirs below $XDG_CONFIG_HOME names, else ~/Documents.
/// Thread: any, as long as nobody changes the environment.
std::filesystem::path recordingsDirectory();

/// "Recording_yyyy-MM-dd_HH-mm-ss" of a moment in local time.
std::string recordingFolderName(Date date);

/// Makes the folder of a new take, parents included, and returns its path. A
/// name that is taken gets a counter appended ("..._2"), so that no take is ever
/// written over. A failure still gives the path, and its reason in `error`, which is
/// cleared else.
std::filesystem::path makeRecordingFolder(const std::filesystem::path& recordingsDirectory,
                                          Date date, std::error_code& error);

/// Names of the files of a take.
namespace take {
inline constexpr const char* kVideo = "video.mov";
inline constexpr const char* kCamera = "camera.mov";
inline constexpr const char* kMetadata = "metadata.json";
inline constexpr const char* kProject = "project.json";
inline constexpr const char* kJournal = "recording.journal"; ///< While it is recorded.
std::string cursorImageName(std::size_t index);              ///< "cursor_<n>.png"
} // namespace take

/// The absolute, percent-encoded file URL of a folder, with a trailing slash.
std::string folderUrl(const std::filesystem::path& folder);

/// The path that a file URL (or a plain path) names; bad escapes stand as they are.
std::filesystem::path pathOfFileUrl(const std::string& url);

} // namespace tavi
