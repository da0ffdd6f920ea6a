#pragma once

#include "project/EditProject.h"

#include <filesystem>

namespace tavi {

/// Where the edit of an open take is kept: `project.json` in its folder, and the look of
/// it as the defaults of new takes in the library's `settings.json`.
///
/// Errors: every one is dropped; the edit in memory stands, and the next save tries again.
///         A file is replaced whole: whatever happens, the old or the new one is there.
/// Thread: main.
class ProjectStore {
public:
    ProjectStore(std::filesystem::path folder, std::filesystem::path recordingsDirectory);

    /// Writes `project.json` now, then persistDefaults().
    void persistProject(const EditProject& project) const;

    /// Makes the project's options the defaults of new takes. Whether these take camera and
    /// microphone stays as the settings say; false where they can't be read.
    void persistDefaults(const EditProject& project) const;

private:
    std::filesystem::path m_folder;
    std::filesystem::path m_recordingsDirectory;
};

} // namespace tavi
