#pragma once

#include "media/ImageGenerator.h"

namespace tavi {

/// Single pictures through the media libraries' decoders; each call opens the
/// file, decodes from the key frame before the time, and closes it. Any thread.
class FfmpegImageGenerator final : public ImageGenerator {
public:
    FfmpegImageGenerator();

    /// Errors: those of opening; noVideoTrack; cannotDecode where the file ends
    /// at or before `time`, or the picture there is damaged.
    Result<PixelBufferPtr, MediaError> copyImage(const std::filesystem::path& path, MediaTime time,
                                                 Size maximumSize) override;
};

} // namespace tavi
