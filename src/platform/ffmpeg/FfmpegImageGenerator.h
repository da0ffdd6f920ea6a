#pragma once

#include "media/ColorConversion.h"
#include "media/ImageGenerator.h"

#include <memory>

namespace tavi {

/// Single pictures through the media libraries' decoders; each call opens the
/// file, decodes from the key frame before the time, and closes it. Any thread.
class FfmpegImageGenerator final : public ImageGenerator {
public:
    /// `colours`: see PictureDecoding.
    explicit FfmpegImageGenerator(std::shared_ptr<const ColorConverter> colours);

    /// Errors: those of opening; noVideoTrack; cannotDecode where the file ends
    /// at or before `time`, or the picture there is damaged.
    Result<PixelBufferPtr, MediaError> copyImage(const std::filesystem::path& path, MediaTime time,
                                                 Size maximumSize) override;

private:
    std::shared_ptr<const ColorConverter> m_colours;
};

} // namespace tavi
