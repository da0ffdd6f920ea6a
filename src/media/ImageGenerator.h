#pragma once

#include "base/Geometry.h"
#include "base/MediaTime.h"
#include "base/PixelBuffer.h"
#include "base/Result.h"
#include "media/MediaError.h"

#include <filesystem>

namespace tavi {

/// Single pictures out of a media file, for thumbnails.
class ImageGenerator {
public:
    virtual ~ImageGenerator() = default;

    /// The picture in force at `time`, with the rotation tag applied, reduced to
    /// fit `maximumSize` (never enlarged). An error where the file ends before `time`.
    virtual Result<PixelBufferPtr, MediaError> copyImage(const std::filesystem::path& path,
                                                         MediaTime time, Size maximumSize) = 0;
};

/// Still picture files. Any thread.
class ImageFiles {
public:
    virtual ~ImageFiles() = default;

    /// Reads a PNG into premultiplied BGRA.
    virtual Result<PixelBufferPtr, MediaError> readPng(const std::filesystem::path& path) = 0;

    /// Writes a PNG with straight alpha. The file appears whole or not at all.
    virtual Result<void, MediaError> writePng(const std::filesystem::path& path,
                                              const PixelBuffer& image) = 0;
};

} // namespace tavi
