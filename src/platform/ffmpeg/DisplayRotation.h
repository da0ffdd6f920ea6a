#pragma once

#include "base/PixelBuffer.h"
#include "platform/ffmpeg/FfmpegHandles.h"

namespace tavi {

/// How a coded picture is turned for display: a quarter turn and possibly a
/// mirroring, as the first two columns of a track's matrix say
/// (ISO/IEC 14496-12, 8.3.2): (x, y) goes to (a x + c y, b x + d y), y downwards,
/// and the result is moved back to the origin. Other angles count as none.
struct DisplayRotation {
    int a = 1;
    int b = 0;
    int c = 0;
    int d = 1;

    bool operator==(const DisplayRotation&) const = default;

    /// True for a quarter turn: width and height change places.
    bool swapsSides() const { return a == 0; }

    PixelBuffer apply(PixelBuffer image) const;
};

/// The rotation tag of a track.
DisplayRotation rotationOf(const AVStream& stream);

} // namespace tavi
