#pragma once

#include "base/Geometry.h"
#include "base/MediaTime.h"
#include "base/PixelBuffer.h"
#include "base/Result.h"
#include "base/SerialQueue.h"
#include "capture/CaptureError.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tavi {

/// What a screen stream shows: a display, or one window by itself.
struct ScreenFilter {
    std::uint32_t displayId = 0; ///< Not looked at when there is a window.
    /// A window without its decoration, whatever covers it and wherever it is; 0 for the display.
    std::uint32_t windowId = 0;
    /// Windows of this program that a display's pictures are not to show, as far as the window
    /// system can leave a window out.
    std::vector<std::uint32_t> exceptingWindows = {};

    static ScreenFilter display(std::uint32_t id) { return {.displayId = id}; }
    static ScreenFilter window(std::uint32_t id) { return {.windowId = id}; }

    bool operator==(const ScreenFilter&) const = default;
};

/// A source that is larger, or becomes larger, is cut off at the right and at the bottom.
struct ScreenStreamConfiguration {
    int width = 0;  ///< Pixels; a source that is smaller is continued by its last column.
    int height = 0; ///< Pixels; likewise by its last row.
    MediaTime minimumFrameInterval{1, 60};

    bool operator==(const ScreenStreamConfiguration&) const = default;
};

enum class ScreenSampleType { screen, audio };

/// One report of a stream.
struct ScreenSample {
    ScreenSampleType type = ScreenSampleType::screen;
    MediaTime presentationTime; ///< Host clock, when the picture was taken.
    /// Absent in a sample that reports a status only. Unless the source is a window with
    /// transparent parts it is opaque, and the fourth byte of its pixels means nothing:
    /// encoders don't look at it, and to set it costs as much as all else together.
    PixelBufferPtr image;
    bool isValid = true;
    /// What the picture shows now, in the global space, in points: in the first sample after a
    /// display was moved or changed its mode. Windows take their place along and tell nothing.
    std::optional<Rect> movedTo = std::nullopt;
};

/// A running view of one source.
///
/// The cursor is in no picture. A picture comes at once when the stream starts, and from then on
/// only when something changed, never faster than the minimum frame interval. A window that is not
/// shown for a while keeps its last picture; one that is closed ends the stream. A display that is
/// moved or changes its mode is shown where it is then, one that became smaller with black at its
/// right and its bottom; one that is disconnected ends the stream. Threads: one
/// controlling thread; samples arrive on the queue given. The destructor stops the stream.
class ScreenStream {
public:
    /// Says whether the picture could be used. Where it could not, it may come again a little later
    /// with a new time though nothing changed: what a screen comes to rest with is not to be lost.
    using Handler = std::function<bool(const ScreenSample&)>;

    virtual ~ScreenStream() = default;

    /// Where samples go; before startCapture(). `queue` outlives the stream.
    virtual Result<void, CaptureError> addStreamOutput(SerialQueue& queue, Handler handler) = 0;

    virtual Result<void, CaptureError> startCapture() = 0;

    /// Ends the stream; no sample is queued after it returns.
    virtual Result<void, CaptureError> stopCapture() = 0;

    /// Why the stream ended by itself; absent while it runs. Any thread.
    virtual std::optional<CaptureError> failure() const = 0;
};

/// Makes streams.
class ScreenStreams {
public:
    virtual ~ScreenStreams() = default;

    /// Whether pictures of the source have an alpha channel: it is a window with transparent
    /// parts. Asked before its stream is made.
    virtual bool hasAlpha(const ScreenFilter&) { return false; }

    virtual Result<std::unique_ptr<ScreenStream>, CaptureError>
    makeStream(const ScreenFilter& filter, const ScreenStreamConfiguration& configuration) = 0;
};

} // namespace tavi
