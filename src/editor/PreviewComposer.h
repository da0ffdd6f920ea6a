#pragma once

#include "base/Geometry.h"
#include "base/PixelBuffer.h"
#include "cursor/CursorRenderer.h"
#include "cursor/KeystrokePictures.h"
#include "editor/CanvasMode.h"
#include "project/EditProject.h"
#include "render/BackgroundRenderer.h"
#include "render/CameraBubble.h"

#include <optional>
#include <vector>

namespace tavi {

/// One moment of the canvas.
struct PreviewMoment {
    PixelBufferPtr frame;       ///< Of the video; null before there is one: black.
    PixelBufferPtr cameraImage; ///< Null for no bubble.
    double time = 0;            ///< Seconds of source video.
    double wallpaperTime = 0;   ///< Seconds on any clock; what a moving wallpaper shows.
    CanvasMode mode = CanvasMode::preview;
};

/// Draws what the editor's canvas shows: the composed output, at the size at which it is looked
/// at.
///
/// Sizes in output pixels shrink with the canvas. Content, background, chips and bubble are as in a
/// film. Kept on purpose: pointer and click rings grow with the zoom, all live rings are shown, and
/// the log's points are scaled from the capture's height to the video's, unlike in a film.
/// Space:   pixels of the canvas, origin at the bottom left.
/// Errors:  none; what can't be made is left out.
/// Threads: one at a time.
class PreviewComposer {
public:
    /// Takes the log of a take over and smooths it.
    void setLog(const EditProject& project, Size videoSize);

    /// Takes the options and keyframes over; only what is different is made anew. `frameSize` are
    /// the even pixels that the output has on the canvas, `pointScale` pixels of a point.
    void setScene(const EditProject& project, Size videoSize, FrameSize frameSize,
                  double pointScale = 1);

    FrameSize frameSize() const { return m_frameSize; }

    /// Draws one moment over all of `out`, which has frameSize().
    void compose(const PreviewMoment& moment, ImageView out);

    /// The point of the video (pixels, limited to it) that the last compose() drew at `pixel`
    /// (from the top left of the frame).
    Point videoPointAt(Point pixel) const;

private:
    /// A part of the frame to draw on: nothing is drawn outside of it.
    struct Area {
        ImageView view;
        int left = 0; ///< Of the view in the frame, from the top left.
        int top = 0;
    };

    Rect cropAt(double time) const;
    const PixelBufferPtr& frameOrBlack(const PixelBufferPtr& frame);
    Point place(Point videoPoint) const;
    Point videoPoint(Point logPoint) const;
    Area contentArea(ImageView out) const;
    void drawPicture(const PixelBuffer& image, Point origin, const Area& area) const;
    void drawCursor(double time, const Area& area) const;
    void drawRings(double time, const Area& area) const;
    void dimAround(const Rect& crop, const Area& area) const;

    Size m_videoSize;
    FrameSize m_frameSize;
    double m_scale = 1;      ///< Canvas pixels for one of the output.
    double m_pointScale = 1; ///< Canvas pixels for a point.
    double m_logScale = 1;   ///< Video pixels for a unit of the log.
    std::vector<ZoomKeyframe> m_keyframes;
    AppearanceSettings m_appearance; ///< That m_background was made for.
    CameraSettings m_camera;         ///< That m_cameraBubble was made for.
    CursorRenderer m_cursor;
    KeystrokePictures m_keystrokes;
    std::optional<BackgroundRenderer> m_background;
    std::optional<CameraBubble> m_cameraBubble;
    PixelBufferPtr m_black;
    Rect m_crop; ///< Of the last compose().
};

} // namespace tavi
