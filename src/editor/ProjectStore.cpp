#include "editor/ProjectStore.h"

#include "project/AppSettings.h"
#include "project/TakeLoader.h"

#include <utility>

namespace tavi {

ProjectStore::ProjectStore(std::filesystem::path folder, std::filesystem::path recordingsDirectory)
    : m_folder(std::move(folder)),
      m_recordingsDirectory(std::move(recordingsDirectory)) {}

void ProjectStore::persistProject(const EditProject& project) const {
    saveProject(project, m_folder);
    persistDefaults(project);
}

void ProjectStore::persistDefaults(const EditProject& project) const {
    AppSettings settings = loadAppSettings(m_recordingsDirectory);
    settings.outputSettings = project.outputSettings;
    settings.cursorSettings = project.cursorSettings;
    settings.appearanceSettings = project.appearanceSettings;
    settings.cameraSettings = project.cameraSettings;
    settings.autoZoomSettings = project.autoZoomSettings;
    saveAppSettings(settings, m_recordingsDirectory);
}

} // namespace tavi
