#pragma once

#include "base/PixelBuffer.h"
#include "capture/CaptureError.h"
#include "platform/x11/PixelRect.h"

#include <optional>

namespace tavi {

/// Keeps a picture of something on an X server up to date. The cursor is not in it.
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

    /// Brings the picture up to date. The area of it that changed, empty when
    /// nothing in it did; the whole picture at the first call.
    virtual PixelRect grab() = 0;

    virtual const PixelBuffer& picture() const = 0;
};

} // namespace tavi
