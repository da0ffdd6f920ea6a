#pragma once

#include "media/ImageGenerator.h"

namespace tavi {

/// PNG files through the media libraries' coder. Any thread.
///
/// Reading takes every colour type and depth (deeper ones reduced to 8 bits).
/// A picture beyond 16384 pixels a side, or 256 megapixels in all, is refused
/// before anything is allocated for it.
class FfmpegImageFiles final : public ImageFiles {
public:
    FfmpegImageFiles();

    /// Errors: notFound, notMedia (no PNG, or one beyond the bounds), cannotDecode (damaged).
    Result<PixelBufferPtr, MediaError> readPng(const std::filesystem::path& path) override;

    /// Errors: cannotWrite, diskFull, cannotEncode (an empty picture).
    Result<void, MediaError> writePng(const std::filesystem::path& path,
                                      const PixelBuffer& image) override;
};

} // namespace tavi
