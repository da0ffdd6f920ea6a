#pragma once

#include "project/EditProject.h"
#include "project/Json.h"
#include "project/JsonWriter.h"

#include <string>
#include <string_view>

namespace tavi {

/// `project.json` as text: the eight persisted fields in their order.
Result<std::string, JsonError> encodeEditProject(const EditProject& project);

/// Reads `project.json`; the fields that are not persisted stay empty or 0.
/// `autoZoomSettings`, `appearanceSettings`, `cameraSettings` and `trimState`
/// may be absent and then have their defaults.
Result<EditProject, JsonError> decodeEditProject(std::string_view json);

/// The keyframes alone, as the array that `project.json` holds.
void write(JsonWriter& json, const std::vector<ZoomKeyframe>& keyframes);

} // namespace tavi
