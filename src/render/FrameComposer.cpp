#include "render/FrameComposer.h"

#include "cursor/CursorPictures.h"
#include "project/Camera.h"
#include "render/Composite.h"
#include "render/RenderGeometry.h"

#include <cmath>

namespace tavi {

namespace {

double fraction(double part, double whole) {
    const double f = part / whole;
    return std::isfinite(f) ? f : 0;
}

/// A cursor picture with its hot spot, as fractions of its sides from its top left corner.
struct CursorPicture {
    PixelBufferPtr image;
    Point hotSpot;
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

bool isMoving(const AppearanceSettings& settings) {
    return settings.backgroundStyle == BackgroundStyle::wallpaper && settings.animateBackground;
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
      m_cameraBubble(project.cameraSettings, m_background.outputSize()),
      m_hasMovingBackground(isMoving(project.appearanceSettings)) {
    m_outputSize = m_background.outputSize();
}

Point FrameComposer::Placement::place(Point source) const {
    return {offset.x + scale * (source.x - crop.x), offset.y + scale * (source.y - crop.y)};
}

void FrameComposer::composeFrame(const PixelBufferPtr& frame, const PixelBufferPtr& cameraImage,
                                 double outputTime, ImageView out) {
    m_drawn = lookAt(frame, cameraImage, outputTime);
    m_background.compose(frame, m_drawn->crop, outputTime, out);
    drawContentOverlays(*m_drawn, out);
    if (m_drawn->keys) {
        drawPicture(*m_drawn->keys, {0, 0}, out);
    }
    m_cameraBubble.draw(cameraImage, out);
}

bool FrameComposer::isRepeat(const PixelBufferPtr& frame, const PixelBufferPtr& cameraImage,
                             double outputTime) {
    return m_drawn && frame == m_drawn->frame && *m_drawn == lookAt(frame, cameraImage, outputTime);
}

FrameComposer::Look FrameComposer::lookAt(const PixelBufferPtr& frame,
                                          const PixelBufferPtr& cameraImage, double outputTime) {
    const Rect crop = evaluateCamera(m_keyframes, outputTime, m_sourceSize,
                                     m_outputSize.width / m_outputSize.height);
    return {frame,
            cameraImage,
            crop,
            m_hasMovingBackground ? outputTime : 0,
            cursorLook(crop, outputTime),
            rippleLook(crop, outputTime),
            m_keystrokes.keystrokeOverlayImage(m_cursor, outputTime, m_outputSize)};
}

std::optional<FrameComposer::CursorLook> FrameComposer::cursorLook(const Rect& crop,
                                                                   double time) const {
    if (!m_cursor.settings.showCursor) {
        return std::nullopt;
    }
    const std::optional<Point> position = m_cursor.position(time);
    if (!position || !crop.contains(*position)) {
        return std::nullopt;
    }
    // Kept on purpose: the content grows with the zoom and the cursor shrinks.
    CursorPicture picture =
        cursorPicture(m_cursor, time, m_cursor.settings.cursorSize / zoomOf(crop));
    return CursorLook{std::move(picture.image), picture.hotSpot, *position};
}

/// Kept on purpose: one ripple a frame, the oldest one inside the crop.
std::optional<FrameComposer::RippleLook> FrameComposer::rippleLook(const Rect& crop,
                                                                   double time) const {
    for (const CursorRenderer::ClickEffectState& click : m_cursor.clickEffects(time)) {
        const Point source{click.position.x, m_cursor.videoHeight - click.position.y};
        if (crop.contains(source)) {
            return RippleLook{source, click.progress};
        }
    }
    return std::nullopt;
}

void FrameComposer::drawContentOverlays(const Look& look, ImageView out) const {
    if (!(m_background.contentScale() > 0)) {
        return; // no content, nothing to point at
    }
    const Placement placement{look.crop, m_background.contentScale(), m_background.contentOffset()};
    if (look.cursor) {
        const Point point = placement.place(look.cursor->position);
        const PixelBuffer& image = *look.cursor->image;
        drawPicture(image,
                    {point.x - image.width() * look.cursor->hotSpot.x,
                     point.y - (1 - look.cursor->hotSpot.y) * image.height()},
                    out);
    }
    if (look.ripple) {
        const Point point = placement.place(look.ripple->position);
        const double radius = m_cursor.settings.cursorSize *
                              CursorRenderer::kClickEffectRadiusFactor / zoomOf(look.crop);
        const PlacedPicture ripple =
            clickEffectImage(point.x, point.y, look.ripple->progress, radius);
        drawPicture(*ripple.image, ripple.origin, out);
    }
}

} // namespace tavi
