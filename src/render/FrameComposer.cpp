#include "render/FrameComposer.h"

#include "cursor/CursorPictures.h"
#include "project/Camera.h"
#include "render/Composite.h"
#include "render/RenderGeometry.h"

#include <cmath>

namespace tavi {

namespace {

/// Where a picture touches the point that it marks, as fractions of its sides
/// from its top left corner.
struct HotSpot {
    double x = 0;
    double y = 0;
};

double fraction(double part, double whole) {
    const double f = part / whole;
    return std::isfinite(f) ? f : 0;
}

/// A cursor picture with its hot spot.
struct CursorPicture {
    PixelBufferPtr image;
    HotSpot hotSpot;
};

CursorPicture systemPicture(const CursorRenderer& cursor, double time, double size) {
    const std::int64_t id = cursor.cursorImageId(time);
    CursorPicture picture{systemImage(id, size, cursor.cursorImages, cursor.cursorImageInfos), {}};
    if (id >= 0 && static_cast<std::size_t>(id) < cursor.cursorImageInfos.size()) {
        const CursorImageInfo& info = cursor.cursorImageInfos[static_cast<std::size_t>(id)];
        picture.hotSpot = {fraction(info.hotspotX, info.width),
                           fraction(info.hotspotY, info.height)};
    }
    return picture;
}

CursorPicture cursorPicture(const CursorRenderer& cursor, double time, double size) {
    switch (cursor.settings.cursorStyle) {
    case CursorStyle::pointer:
        return {pointerImage(size), {0, 0}};
    case CursorStyle::circle:
        return {circleImage(size), {0.5, 0.5}};
    case CursorStyle::system:
        return systemPicture(cursor, time, size);
    }
    return {pointerImage(size), {0, 0}};
}

/// Draws a picture whose lower left corner is `origin`, y upwards.
void drawPicture(const PixelBuffer& image, Point origin, ImageView out) {
    compositeOver(out, image, {origin.x, out.height - origin.y - image.height()});
}

CursorRenderer makeCursorRenderer(const EditProject& project, std::vector<CursorEvent> events,
                                  Size sourceSize) {
    const double height = project.videoHeight > 0 ? project.videoHeight : sourceSize.height;
    return CursorRenderer::make(std::move(events), height, project.cursorSettings,
                                project.cursorImages, project.cursorImageInfos);
}

Size outputSizeOf(const EditProject& project, Size sourceSize) {
    const OutputSettings& output = project.outputSettings;
    return resolvedOutputSize(output.resolution, output.autoAspectRatio, sourceSize);
}

} // namespace

FrameComposer::FrameComposer(const EditProject& project, OutputTimeline timeline, Size sourceSize)
    : m_sourceSize(sourceSize),
      m_outputSize(outputSizeOf(project, sourceSize)),
      m_keyframes(std::move(timeline.keyframes)),
      m_cursor(makeCursorRenderer(project, std::move(timeline.cursorEvents), sourceSize)),
      m_background(project.appearanceSettings, m_outputSize),
      m_cameraBubble(project.cameraSettings, m_background.outputSize()) {
    m_outputSize = m_background.outputSize();
}

Point FrameComposer::Placement::place(Point source) const {
    return {offset.x + scale * (source.x - crop.x), offset.y + scale * (source.y - crop.y)};
}

void FrameComposer::composeFrame(const PixelBufferPtr& frame, const PixelBufferPtr& cameraImage,
                                 double outputTime, ImageView out) {
    const Rect crop = evaluateCamera(m_keyframes, outputTime, m_sourceSize,
                                     m_outputSize.width / m_outputSize.height);
    m_background.compose(frame, crop, outputTime, out);
    drawContentOverlays(crop, outputTime, out);
    if (const auto keys = m_keystrokes.keystrokeOverlayImage(m_cursor, outputTime, m_outputSize)) {
        drawPicture(*keys, {0, 0}, out);
    }
    m_cameraBubble.draw(cameraImage, out);
}

void FrameComposer::drawContentOverlays(const Rect& crop, double time, ImageView out) const {
    if (!(m_background.contentScale() > 0)) {
        return; // no content, nothing to point at
    }
    const Placement placement{crop, m_background.contentScale(), m_background.contentOffset(),
                              m_sourceSize.width / crop.width};
    drawCursor(placement, time, out);
    drawClickEffect(placement, time, out);
}

void FrameComposer::drawCursor(const Placement& placement, double time, ImageView out) const {
    if (!m_cursor.settings.showCursor) {
        return;
    }
    const std::optional<Point> position = m_cursor.position(time);
    if (!position || !placement.crop.contains(*position)) {
        return;
    }
    // Kept on purpose: the content grows with the zoom and the cursor shrinks.
    const double size = m_cursor.settings.cursorSize / placement.zoom;
    const CursorPicture picture = cursorPicture(m_cursor, time, size);
    const Point point = placement.place(*position);
    drawPicture(*picture.image,
                {point.x - picture.image->width() * picture.hotSpot.x,
                 point.y - (1 - picture.hotSpot.y) * picture.image->height()},
                out);
}

void FrameComposer::drawClickEffect(const Placement& placement, double time, ImageView out) const {
    for (const CursorRenderer::ClickEffectState& click : m_cursor.clickEffects(time)) {
        const Point source{click.position.x, m_cursor.videoHeight - click.position.y};
        if (!placement.crop.contains(source)) {
            continue;
        }
        // Kept on purpose: one ripple a frame, the oldest one inside the crop.
        const Point point = placement.place(source);
        const double radius = m_cursor.settings.cursorSize *
                              CursorRenderer::kClickEffectRadiusFactor / placement.zoom;
        const PlacedPicture ripple = clickEffectImage(point.x, point.y, click.progress, radius);
        drawPicture(*ripple.image, ripple.origin, out);
        return;
    }
}

} // namespace tavi
