#pragma once

#include "capture/Screenshots.h"

#include <map>
#include <span>
#include <vector>

namespace tavi {

/// A small picture to be taken.
struct ThumbnailRequest {
    ScreenFilter filter;
    ScreenshotConfiguration configuration;
};

/// Takes the pictures, several at a time, and waits for all of them.
///
/// Shapes: each picture under the index of its request; one that can't be taken is missing.
/// Threads: any; the pictures are taken on threads of their own.
std::map<int, PixelBufferPtr> takeThumbnails(Screenshots& screenshots,
                                             std::span<const ThumbnailRequest> requests);

} // namespace tavi
