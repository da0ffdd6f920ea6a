#include "project/TakeLoader.h"

#include "project/AppSettings.h"
#include "project/EditProjectJson.h"
#include "project/RecordingFolder.h"
#include "project/RecordingMetadataJson.h"

namespace tavi {

namespace {

EditProject freshProject(const std::filesystem::path& folder, const AppSettings& settings) {
    EditProject project;
    project.recordingPath = folderUrl(folder);
    project.outputSettings = settings.outputSettings;
    project.cursorSettings = settings.cursorSettings;
    project.autoZoomSettings = settings.autoZoomSettings;
    project.appearanceSettings = settings.appearanceSettings;
    project.cameraSettings = settings.cameraSettings;
    return project;
}

/// The library that holds a take, whichever way its path is written.
std::filesystem::path libraryOf(const std::filesystem::path& folder) {
    std::error_code error;
    auto absolute = std::filesystem::absolute(folder, error).lexically_normal();
    if (!absolute.has_filename()) {
        absolute = absolute.parent_path();
    }
    return absolute.parent_path();
}

} // namespace

EditProject openProject(const std::filesystem::path& folder,
                        const std::filesystem::path& recordingsDirectory) {
    if (const auto text = readTextFile(folder / take::kProject)) {
        if (auto project = decodeEditProject(*text)) {
            return *std::move(project);
        }
    }
    return freshProject(folder, loadAppSettings(recordingsDirectory));
}

EditProject openProject(const std::filesystem::path& folder) {
    return openProject(folder, libraryOf(folder));
}

void loadRecordingMetadata(EditProject& project, const std::filesystem::path& folder,
                           const ReadImage& readImage) {
    const auto text = readTextFile(folder / take::kMetadata);
    if (!text) {
        return;
    }
    auto metadata = decodeRecordingMetadata(*text);
    if (!metadata) {
        return;
    }
    project.cursorEvents = std::move(metadata->cursorEvents);
    project.cursorImageInfos = std::move(metadata->cursorImageInfos);
    project.videoHeight = static_cast<double>(metadata->screenHeight);
    project.cameraStartDelay = metadata->cameraStartDelay;
    project.cursorImages.clear();
    for (std::size_t i = 0; i < project.cursorImageInfos.size(); ++i) {
        if (auto image = readImage(folder / take::cursorImageName(i))) {
            project.cursorImages.push_back(std::move(image));
        }
    }
}

EditProject loadTake(const std::filesystem::path& folder, const ReadImage& readImage) {
    EditProject project = openProject(folder);
    loadRecordingMetadata(project, folder, readImage);
    return project;
}

bool saveProject(const EditProject& project, const std::filesystem::path& folder) {
    const auto text = encodeEditProject(project);
    return text && replaceTextFile(folder / take::kProject, *text);
}

} // namespace tavi
