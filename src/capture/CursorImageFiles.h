#pragma once

#include "media/ImageGenerator.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace tavi {

/// Writes the cursor images of a take (CursorImageBytes.h), by their index, as its
/// "cursor_<n>.png". An image that can't be written leaves a gap in the files.
void writeCursorImages(const std::filesystem::path& folder,
                       const std::vector<std::vector<std::uint8_t>>& datas, ImageFiles& imageFiles);

} // namespace tavi
