#pragma once

#include "base/PixelBuffer.h"
#include "base/Result.h"
#include "capture/CaptureError.h"
#include "capture/ScreenStream.h"

namespace tavi {

/// What a still picture is to be.
struct ScreenshotConfiguration {
    int width = 0;            ///< Pixels; the source is scaled to it.
    int height = 0;           ///< Pixels.
    bool showsCursor = false; ///< For displays only.

    bool operator==(const ScreenshotConfiguration&) const = default;
};

/// The configuration of a source's small picture in a list: 640 wide, in the source's
/// proportions, cut down to whole pixels, at least one high.
///
/// Units: the source's width and height are points, both positive.
ScreenshotConfiguration thumbnailConfiguration(double sourceWidth, double sourceHeight,
                                               bool showsCursor);

/// Takes single pictures of sources.
class Screenshots {
public:
    virtual ~Screenshots() = default;

    /// The source as it looks now, in premultiplied pixels; blocks for some
    /// milliseconds. Any thread, several at a time.
    virtual Result<PixelBufferPtr, CaptureError>
    captureImage(const ScreenFilter& filter, const ScreenshotConfiguration& configuration) = 0;
};

} // namespace tavi
