#pragma once

#include "base/Geometry.h"
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

    /// Becomes readable when the server has news or a picture has come; hasNews() or hasCome() must
    /// have been asked since the last request() before anyone waits on it.
    virtual int descriptor() const = 0;

    /// Reads the server's events: true when something may have changed since the last request().
    /// Not while a picture is on its way.
    virtual bool hasNews() = 0;

    /// Why there will be no more pictures; absent while there may be.
    virtual std::optional<CaptureError> failure() const = 0;

    /// True when pictures have alpha; else the fourth byte of their pixels means nothing.
    virtual bool hasAlpha() const = 0;

    /// Asks for the picture of now and doesn't wait for it; collect() is next. False when it is
    /// that of the last call or none can be had. The first call always asks for one of what is
    /// shown.
    virtual bool request() = 0;

    /// Whether what was asked for has come, so that collect() doesn't wait.
    virtual bool hasCome() = 0;

    /// What was asked for; null where the server didn't have it.
    virtual PixelBufferPtr collect() = 0;

    /// What the picture last asked for shows, in the global space, if that is another place than
    /// that of the one before.
    virtual std::optional<Rect> move() const { return std::nullopt; }

    /// request() and collect().
    PixelBufferPtr grab() { return request() ? collect() : nullptr; }
};

} // namespace tavi
