#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"
#include "cursor/CursorRenderer.h"
#include "cursor/KeystrokePictures.h"
#include "project/EditProject.h"
#include "render/BackgroundRenderer.h"
#include "render/CameraBubble.h"
#include "render/OutputTimeline.h"

#include <vector>

namespace tavi {

/// Makes finished output frames out of source frames: crop, background, content,
/// cursor, click ripple, keys pressed and camera, each above the one before. Keys
/// and camera stand still whatever the zoom does.
///
/// Space: output pixels and source pixels, both with the origin at the bottom
/// left; the cursor's log is used as it stands, a point being a source pixel.
/// Failures: none; an overlay that can't be made is left out.
/// Threads: one at a time.
class FrameComposer {
public:
    /// `sourceSize` is that of the video track. Smooths the cursor's log.
    FrameComposer(const EditProject& project, OutputTimeline timeline, Size sourceSize);

    /// The output's exact size.
    Size outputSize() const { return m_outputSize; }

    /// The pixels of a finished frame.
    FrameSize frameSize() const { return frameSizeFor(m_outputSize); }

    /// Draws the frame of one moment over all of `out`, which has frameSize().
    ///
    /// `frame` is the source image in force, not null; `cameraImage` is that of
    /// the camera, null for no bubble. `outputTime` is in seconds and decides on
    /// everything: crop, cursor, ripple, keys and moving backgrounds.
    void composeFrame(const PixelBufferPtr& frame, const PixelBufferPtr& cameraImage,
                      double outputTime, ImageView out);

private:
    /// Where source points land in the output for one frame.
    struct Placement {
        Rect crop; ///< Source pixels.
        double scale = 0;
        Point offset;
        double zoom = 1; ///< Source width over the crop's.

        Point place(Point source) const;
    };

    void drawContentOverlays(const Rect& crop, double time, ImageView out) const;
    void drawCursor(const Placement& placement, double time, ImageView out) const;
    void drawClickEffect(const Placement& placement, double time, ImageView out) const;

    Size m_sourceSize;
    Size m_outputSize;
    std::vector<ZoomKeyframe> m_keyframes;
    CursorRenderer m_cursor;
    BackgroundRenderer m_background;
    KeystrokePictures m_keystrokes;
    CameraBubble m_cameraBubble;
};

} // namespace tavi
