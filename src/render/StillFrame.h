#pragma once

#include "base/PixelBuffer.h"
#include "base/Result.h"
#include "media/MediaLibrary.h"
#include "project/EditProject.h"

#include <string>

namespace tavi {

/// The composed output frame of one moment, as an export would show it.
///
/// Units:  `outputTime` in seconds of output, from 0 up to, but not including,
///         the output's length.
/// Errors: a sentence for the user: nothing kept of the take, a time outside of
///         the output (with the range there is), a source that can't be read.
/// Thread: any; blocks.
Result<PixelBuffer, std::string> renderStillFrame(MediaLibrary& media, const Asset& asset,
                                                  const EditProject& project, double outputTime);

} // namespace tavi
