#pragma once

#include "media/AssetReader.h"

#include <filesystem>
#include <vector>

namespace tavi::test {

/// Every picture of a take's video; none where it can't be read.
std::vector<VideoSample> readAll(const std::filesystem::path& video);

} // namespace tavi::test
