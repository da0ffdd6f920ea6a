#include "editor/PreviewComposer.h"

#include "cursor/CursorPictures.h"
#include "cursor/PreviewPictures.h"
#include "project/Camera.h"
#include "render/Composite.h"
#include "render/RenderGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tavi {

namespace {

constexpr CameraBubbleShadow kBubbleShadow{0.3, 8}; ///< In output pixels.
constexpr double kThinnestBorder = 0.5;             ///< Canvas pixels.

constexpr double kRingFactor = 1.5; ///< Of the cursor's size: a ring's first diameter.
constexpr double kRimWidth = 1.5;   ///< Points.

constexpr double kDim = 0.4;        ///< Alpha of what lies outside of the crop.
constexpr double kCropBorder = 1.5; ///< Points.
constexpr double kCropBorderAlpha = 0.6;

AppearanceSettings scaled(AppearanceSettings settings, double scale) {
    settings.cornerRadius *= scale;
    settings.shadowRadius *= scale;
    settings.blurRadius *= scale;
    return settings;
}

CameraSettings scaled(CameraSettings settings, double scale) {
    settings.cornerRadius *= scale;
    settings.borderWidth = std::max(kThinnestBorder, settings.borderWidth * scale);
    return settings;
}

bool isInTable(std::int64_t id, const std::vector<CursorImageInfo>& infos) {
    return id >= 0 && static_cast<std::size_t>(id) < infos.size();
}

/// The hot spot as fractions of a picture's sides from its top left corner.
Point hotSpot(const CursorRenderer& cursor, std::int64_t id) {
    if (!isInTable(id, cursor.cursorImageInfos)) {
        return {};
    }
    const CursorImageInfo& info = cursor.cursorImageInfos[static_cast<std::size_t>(id)];
    return {info.width > 0 ? info.hotspotX / info.width : 0,
            info.height > 0 ? info.hotspotY / info.height : 0};
}

/// A stroke between two rectangles of whole pixels, white of an alpha.
void strokeWhite(const PixelBounds& outer, int width, double alpha, ImageView out) {
    const auto value = static_cast<std::uint8_t>(std::lround(alpha * 255));
    const std::array<std::uint8_t, 4> pixel{value, value, value, value};
    for (int y = std::max(outer.top, 0); y < std::min(outer.bottom, out.height); ++y) {
        const bool isEdgeRow = y < outer.top + width || y >= outer.bottom - width;
        for (int x = std::max(outer.left, 0); x < std::min(outer.right, out.width); ++x) {
            if (isEdgeRow || x < outer.left + width || x >= outer.right - width) {
                compositeRowOver(out.row(y) + static_cast<std::ptrdiff_t>(x) * 4, pixel.data(), 1);
            }
        }
    }
}

} // namespace

void PreviewComposer::setLog(const EditProject& project, Size videoSize) {
    const double height = project.videoHeight > 0 ? project.videoHeight : videoSize.height;
    m_logScale = height > 0 ? videoSize.height / height : 1;
    m_cursor = CursorRenderer::make(project.cursorEvents, height, project.cursorSettings,
                                    project.cursorImages, project.cursorImageInfos);
}

void PreviewComposer::setScene(const EditProject& project, Size videoSize, FrameSize frameSize,
                               double pointScale) {
    const OutputSettings& output = project.outputSettings;
    const Size outputSize =
        resolvedOutputSize(output.resolution, output.autoAspectRatio, videoSize);
    const double scale = outputSize.width > 0 ? frameSize.width / outputSize.width : 1;
    const bool isResized = frameSize != m_frameSize || scale != m_scale || !m_background;
    const Size size{static_cast<double>(frameSize.width), static_cast<double>(frameSize.height)};
    m_videoSize = videoSize;
    m_frameSize = frameSize;
    m_scale = scale;
    m_pointScale = pointScale;
    m_keyframes = project.keyframes;
    if (project.cursorSettings.smoothingPreset != m_cursor.settings.smoothingPreset) {
        m_cursor = CursorRenderer::make(std::move(m_cursor.events), m_cursor.videoHeight,
                                        project.cursorSettings, m_cursor.cursorImages,
                                        m_cursor.cursorImageInfos);
    }
    m_cursor.settings = project.cursorSettings;
    if (isResized || m_appearance != project.appearanceSettings) {
        m_appearance = project.appearanceSettings;
        m_background.emplace(scaled(m_appearance, scale), size);
    }
    if (isResized || m_camera != project.cameraSettings) {
        m_camera = project.cameraSettings;
        m_cameraBubble.emplace(
            scaled(m_camera, scale), size,
            CameraBubbleShadow{kBubbleShadow.alpha, kBubbleShadow.sigma * scale});
    }
}

void PreviewComposer::compose(const PreviewMoment& moment, ImageView out) {
    const Rect crop = cropAt(moment.time);
    const bool isZoomed = moment.mode == CanvasMode::preview;
    m_crop = isZoomed ? crop : Rect{0, 0, m_videoSize.width, m_videoSize.height};
    m_background->compose(frameOrBlack(moment.frame), m_crop, moment.wallpaperTime, out);
    if (m_background->contentScale() > 0) {
        const Area content = contentArea(out);
        drawRings(moment.time, content);
        drawCursor(moment.time, content);
        if (!isZoomed && !m_keyframes.empty()) {
            dimAround(crop, content);
        }
    }
    const Size size{static_cast<double>(m_frameSize.width),
                    static_cast<double>(m_frameSize.height)};
    if (const auto keys = m_keystrokes.keystrokeOverlayImage(m_cursor, moment.time, size)) {
        drawPicture(*keys, {0, 0}, {out, 0, 0});
    }
    m_cameraBubble->draw(moment.cameraImage, out);
}

Rect PreviewComposer::cropAt(double time) const {
    const double aspect =
        static_cast<double>(m_frameSize.width) / static_cast<double>(m_frameSize.height);
    return evaluateCamera(m_keyframes, time, m_videoSize, aspect);
}

const PixelBufferPtr& PreviewComposer::frameOrBlack(const PixelBufferPtr& frame) {
    if (frame && !frame->empty()) {
        return frame;
    }
    const int width = std::max(1, static_cast<int>(m_videoSize.width));
    const int height = std::max(1, static_cast<int>(m_videoSize.height));
    if (!m_black || m_black->width() != width || m_black->height() != height) {
        auto black = std::make_shared<PixelBuffer>(width, height);
        for (int y = 0; y < height; ++y) {
            makeRowOpaque(black->row(y), width);
        }
        m_black = std::move(black);
    }
    return m_black;
}

Point PreviewComposer::place(Point videoPoint) const {
    const double scale = m_background->contentScale();
    const Point offset = m_background->contentOffset();
    return {offset.x + scale * (videoPoint.x - m_crop.x),
            offset.y + scale * (videoPoint.y - m_crop.y)};
}

Point PreviewComposer::videoPointAt(Point pixel) const {
    if (!m_background || !(m_background->contentScale() > 0)) {
        return {};
    }
    const double scale = m_background->contentScale();
    const Point offset = m_background->contentOffset();
    const double x = m_crop.x + (pixel.x - offset.x) / scale;
    const double y = m_crop.y + (m_frameSize.height - pixel.y - offset.y) / scale;
    return {std::clamp(x, 0.0, m_videoSize.width), std::clamp(y, 0.0, m_videoSize.height)};
}

Point PreviewComposer::videoPoint(Point logPoint) const {
    return {logPoint.x * m_logScale, logPoint.y * m_logScale};
}

PreviewComposer::Area PreviewComposer::contentArea(ImageView out) const {
    const double scale = m_background->contentScale();
    const Point offset = m_background->contentOffset();
    const Rect rect{offset.x, offset.y, m_crop.width * scale, m_crop.height * scale};
    const PixelBounds bounds =
        touchedPixels(flipped(rect, m_frameSize.height), {0, 0, out.width, out.height});
    return {{out.row(bounds.top) + static_cast<std::ptrdiff_t>(bounds.left) * 4, bounds.width(),
             bounds.height(), out.stride},
            bounds.left,
            bounds.top};
}

void PreviewComposer::drawPicture(const PixelBuffer& image, Point origin, const Area& area) const {
    compositeOver(
        area.view, image,
        {origin.x - area.left, m_frameSize.height - origin.y - image.height() - area.top});
}

void PreviewComposer::drawCursor(double time, const Area& area) const {
    const auto position = m_cursor.position(time);
    if (!m_cursor.settings.showCursor || !position) {
        return;
    }
    const Point point = place(videoPoint(*position));
    const double size = m_cursor.settings.cursorSize * m_background->contentScale();
    PixelBufferPtr image;
    Point spot;
    switch (m_cursor.settings.cursorStyle) {
    case CursorStyle::pointer:
        image = pointerImage(size);
        break;
    case CursorStyle::circle:
        image = previewCircleImage(size);
        spot = {0.5, 0.5};
        break;
    case CursorStyle::system: {
        const std::int64_t id = m_cursor.cursorImageId(time);
        image = systemImage(id, size, m_cursor.cursorImages, m_cursor.cursorImageInfos);
        spot = hotSpot(m_cursor, id);
        break;
    }
    }
    drawPicture(*image,
                {point.x - image->width() * spot.x, point.y - (1 - spot.y) * image->height()},
                area);
}

void PreviewComposer::drawRings(double time, const Area& area) const {
    if (!m_cursor.settings.showCursor) {
        return;
    }
    const double diameter =
        m_cursor.settings.cursorSize * kRingFactor * m_background->contentScale();
    for (const CursorRenderer::ClickEffectState& click : m_cursor.clickEffects(time)) {
        const Point point{click.position.x, m_cursor.videoHeight - click.position.y};
        const PlacedPicture ring = previewRingImage(place(videoPoint(point)), click.progress,
                                                    diameter, kRimWidth * m_pointScale);
        drawPicture(*ring.image, ring.origin, area);
    }
}

void PreviewComposer::dimAround(const Rect& crop, const Area& area) const {
    const Point low = place({crop.x, crop.y});
    const Point high = place({crop.maxX(), crop.maxY()});
    const auto pixel = [](double v) { return static_cast<int>(std::lround(v)); };
    const PixelBounds hole{pixel(low.x) - area.left, m_frameSize.height - pixel(high.y) - area.top,
                           pixel(high.x) - area.left, m_frameSize.height - pixel(low.y) - area.top};
    const int left = std::clamp(hole.left, 0, area.view.width);
    const int right = std::clamp(hole.right, left, area.view.width);
    const std::vector<std::uint8_t> dim(static_cast<std::size_t>(area.view.width),
                                        static_cast<std::uint8_t>(std::lround(kDim * 255)));
    for (int y = 0; y < area.view.height; ++y) {
        std::uint8_t* row = area.view.row(y);
        const bool isBeside = y >= hole.top && y < hole.bottom;
        darkenRow(row, dim.data(), isBeside ? left : area.view.width);
        if (isBeside) {
            darkenRow(row + static_cast<std::ptrdiff_t>(right) * 4, dim.data(),
                      area.view.width - right);
        }
    }
    strokeWhite(hole, std::max(1, pixel(kCropBorder * m_pointScale)), kCropBorderAlpha, area.view);
}

} // namespace tavi
