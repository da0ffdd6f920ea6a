#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"
#include "cursor/CursorRenderer.h"
#include "cursor/KeystrokePictures.h"
#include "project/EditProject.h"
#include "render/BackgroundRenderer.h"
#include "render/CameraBubble.h"
#include "render/OutputTimeline.h"

#include <optional>
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

    /// True where composeFrame() would draw, pixel for pixel, what it drew last.
    /// Costs next to nothing beside it.
    bool isRepeat(const PixelBufferPtr& frame, const PixelBufferPtr& cameraImage,
                  double outputTime);

private:
    /// The cursor: what is drawn, and the source point that it marks.
    struct CursorLook {
        PixelBufferPtr image;
        Point hotSpot; ///< As fractions of the picture's sides from its top left corner.
        Point position;
        bool operator==(const CursorLook&) const = default;
    };

    /// The ripple of a click.
    struct RippleLook {
        Point position; ///< Source point.
        double progress = 0;
        bool operator==(const RippleLook&) const = default;
    };

    /// All that decides what a frame looks like.
    struct Look {
        PixelBufferPtr frame;
        PixelBufferPtr cameraImage;
        Rect crop;                 ///< Source pixels.
        double backgroundTime = 0; ///< 0 for a background that doesn't move.
        std::optional<CursorLook> cursor;
        std::optional<RippleLook> ripple;
        PixelBufferPtr keys; ///< Null without.
        bool operator==(const Look&) const = default;
    };

    /// Where source points land in the output for one frame.
    struct Placement {
        Rect crop; ///< Source pixels.
        double scale = 0;
        Point offset;

        Point place(Point source) const;
    };

    Look lookAt(const PixelBufferPtr& frame, const PixelBufferPtr& cameraImage, double outputTime);
    double zoomOf(const Rect& crop) const { return m_sourceSize.width / crop.width; }
    std::optional<CursorLook> cursorLook(const Rect& crop, double time) const;
    std::optional<RippleLook> rippleLook(const Rect& crop, double time) const;
    void drawContentOverlays(const Look& look, ImageView out) const;

    Size m_sourceSize;
    Size m_outputSize;
    std::vector<ZoomKeyframe> m_keyframes;
    CursorRenderer m_cursor;
    BackgroundRenderer m_background;
    KeystrokePictures m_keystrokes;
    CameraBubble m_cameraBubble;
    bool m_hasMovingBackground = false;
    std::optional<Look> m_drawn; ///< The last one drawn.
};

} // namespace tavi
