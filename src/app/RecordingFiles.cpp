#include "app/RecordingFiles.h"

#include "app/PathText.h"
#include "base/SystemReason.h"
#include "project/RecordingFolder.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <system_error>

namespace tavi {

namespace {

namespace fs = std::filesystem;
using Kind = RecordingFileError::Kind;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

/// Moves only where nothing stands yet.
std::error_code renameToFreeName(const fs::path& from, const fs::path& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return {};
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return lastError();
    }
    // This file system can't look and move in one step.
    if (isThere(to)) {
        return std::make_error_code(std::errc::file_exists);
    }
    return rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : lastError();
}

} // namespace

Message RecordingFileError::message() const {
    const std::string name = nameOf(path);
    switch (kind) {
    case Kind::notFound:
        return {TAVI_TEXT("Errors", "\"%1\" is not there any more."), {name}};
    case Kind::noVideo:
        return {TAVI_TEXT("Errors", "\"%1\" can't be opened: there is no video in it."), {name}};
    case Kind::nameTaken:
        return {TAVI_TEXT("Errors", "\"%1\" exists already."), {name}};
    case Kind::failed:
        break;
    }
    return {"\"%1\": %2.", {name, detail}};
}

Result<void, RecordingFileError> findRecording(const fs::path& folder) {
    if (isThere(folder / take::kVideo)) {
        return {};
    }
    const Kind kind = isThere(folder) ? Kind::noVideo : Kind::notFound;
    return fail(RecordingFileError{kind, folder, {}});
}

Result<void, RecordingFileError> removeRecording(const fs::path& folder) {
    if (!isThere(folder)) {
        return fail(RecordingFileError{Kind::notFound, folder, {}});
    }
    std::error_code error;
    fs::remove_all(folder, error);
    if (error) {
        return fail(RecordingFileError{Kind::failed, folder, systemReason(error)});
    }
    return {};
}

Result<void, RecordingFileError> moveRecording(const fs::path& folder,
                                               const fs::path& destination) {
    if (!isThere(folder)) {
        return fail(RecordingFileError{Kind::notFound, folder, {}});
    }
    const std::error_code error = renameToFreeName(folder, destination);
    if (error == std::errc::file_exists) {
        return fail(RecordingFileError{Kind::nameTaken, destination, {}});
    }
    if (error) {
        return fail(RecordingFileError{Kind::failed, folder, systemReason(error)});
    }
    return {};
}

} // namespace tavi
