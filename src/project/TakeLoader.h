#pragma once

#include "base/PixelBuffer.h"
#include "project/EditProject.h"

#include <filesystem>
#include <functional>

namespace tavi {

/// Decodes one PNG file; null when it can't be read.
using ReadImage = std::function<PixelBufferPtr(const std::filesystem::path&)>;

/// The edit of the take in `folder`: its `project.json`, or a fresh one with the
/// options of the library's `settings.json` (or the built-in defaults) where
/// that file is missing or does not decode. The derived fields are empty.
EditProject openProject(const std::filesystem::path& folder,
                        const std::filesystem::path& recordingsDirectory);

/// The same with the folder that the take lies in as the library.
EditProject openProject(const std::filesystem::path& folder);

/// Refills the derived fields from `metadata.json` and the cursor images of
/// `folder`. A missing or broken sidecar leaves the project as it is.
/// Kept on purpose: images that can't be read leave no gap in the list, so
/// later ones sit below their number.
void loadRecordingMetadata(EditProject& project, const std::filesystem::path& folder,
                           const ReadImage& readImage);

/// Both of the above.
EditProject loadTake(const std::filesystem::path& folder, const ReadImage& readImage);

/// Writes `project.json` of `folder`. False when it can't be encoded or written;
/// the file is then as before.
bool saveProject(const EditProject& project, const std::filesystem::path& folder);

} // namespace tavi
