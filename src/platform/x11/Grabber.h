#pragma once

#include "base/PixelBuffer.h"
#include "capture/CaptureError.h"

#include <optional>

namespace tavi {

/// Takes pictures of something on an X server. The cursor is not in them.
///
/// Threads: one at a time.
class Grabber {
public:
    virtual ~Grabber() = default;

    /// Becomes readable when the server has news; hasNews() must have been
    /// asked since the last grab() before anyone waits on it.
    virtual int descriptor() const = 0;

    /// Reads the server's events: true when something may have changed since the last grab().
    virtual bool hasNews() = 0;

    /// Why there will be no more pictures; absent while there may be.
    virtual std::optional<CaptureError> failure() const = 0;

    /// True when pictures have alpha; else the fourth byte of their pixels means nothing.
    virtual bool hasAlpha() const = 0;

    /// The picture of now; null when it is the one of the last call or none can be had. The
    /// first call always gives one of what is shown.
    virtual PixelBufferPtr grab() = 0;
};

} // namespace tavi
