#pragma once

#include "base/Result.h"
#include "media/AssetReader.h"
#include "media/MediaError.h"
#include "platform/ffmpeg/FfmpegHandles.h"

#include <filesystem>

namespace tavi {

/// Opens a media file for reading. Only local files of the containers that the
/// program knows are opened: no playlist, no network, no file named by another.
/// Errors: notFound, notMedia.
Result<InputHandle, MediaError> openInput(const std::filesystem::path& path);

/// The duration and tracks of an open file.
Asset describeAsset(const std::filesystem::path& path, const AVFormatContext& input);

/// Opens the file, describes it and closes it again.
Result<Asset, MediaError> openFfmpegAsset(const std::filesystem::path& path);

/// False for a size that only a damaged file can have.
bool isReasonable(Size pictureSize);

/// `ticks` of a stream's clock as a time.
MediaTime streamTime(std::int64_t ticks, AVRational timeBase);

} // namespace tavi
