#pragma once

#include "media/MediaError.h"

#include <filesystem>
#include <string>

namespace tavi {

/// Keeps every message of the media libraries off standard error. Any thread;
/// the first call decides, later ones cost nothing.
void silenceFfmpegLog();

/// The words for one of the library's (negative) error codes, the system's among them; windows
/// translate the common ones.
std::string ffmpegReason(int code);

MediaError mediaError(MediaError::Kind kind, const std::filesystem::path& file, std::string reason);

/// The error for a failed write to `file`: diskFull where space or quota ran
/// out, cannotWrite otherwise. `code` is a library error code.
MediaError writeError(const std::filesystem::path& file, int code);

/// The name under which the libraries open a plain file, whatever characters
/// are in it.
std::string fileUrl(const std::filesystem::path& file);

} // namespace tavi
