#include "platform/x11/X11Screenshots.h"

#include "capture/AreaScaling.h"
#include "capture/CursorImageBytes.h"
#include "platform/x11/ScreenGrabber.h"
#include "platform/x11/WindowGrabber.h"
#include "platform/x11/X11Pointer.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tavi {

namespace {

/// Draws premultiplied `from` over `to`, its top left corner at (left, top); what is outside is
/// left out.
void drawOver(PixelBuffer& to, const PixelBuffer& from, int left, int top) {
    const PixelRect area = PixelRect{left, top, from.width(), from.height()}.intersected(
        {0, 0, to.width(), to.height()});
    for (int y = area.y; y < area.y + area.height; ++y) {
        const std::uint8_t* source = from.row(y - top) + (area.x - left) * 4;
        std::uint8_t* target = to.row(y) + area.x * 4;
        for (int i = 0; i < area.width * 4; ++i) {
            const int alpha = source[(i & ~3) + 3];
            target[i] = static_cast<std::uint8_t>(
                std::min(source[i] + (target[i] * (255 - alpha) + 127) / 255, 255));
        }
    }
}

/// Draws the cursor of now where it is now.
void drawCursor(PixelBuffer& picture, const Rect& frame, const std::string& displayName) {
    const auto pointer = X11Pointer::open(displayName);
    if (!pointer) {
        return;
    }
    const auto cursor = (*pointer)->currentSystemCursor();
    const auto image = cursor ? cursorImageFromBytes(cursor->imageBytes) : std::nullopt;
    if (!image) {
        return;
    }
    const Point place = (*pointer)->query();
    drawOver(picture, *image, static_cast<int>(std::lround(place.x - frame.x - cursor->hotSpot.x)),
             static_cast<int>(std::lround(frame.maxY() - place.y - cursor->hotSpot.y)));
}

PixelBuffer copyOf(const PixelBuffer& picture) {
    PixelBuffer copy(picture.width(), picture.height());
    std::memcpy(copy.data(), picture.data(),
                picture.stride() * static_cast<std::size_t>(picture.height()));
    return copy;
}

/// What it shows now.
Result<PixelBufferPtr, CaptureError> takeShot(Grabber& grabber) {
    static_cast<void>(grabber.hasNews());
    PixelBufferPtr taken = grabber.grab();
    if (auto failure = grabber.failure()) {
        return fail(std::move(*failure));
    }
    return taken ? Result<PixelBufferPtr, CaptureError>(std::move(taken))
                 : fail(CaptureError{CaptureError::Kind::sourceGone, "it isn't shown"});
}

void makeOpaque(PixelBuffer& picture) {
    for (int y = 0; y < picture.height(); ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(picture.row(y));
        std::transform(row, row + picture.width(), row,
                       [](std::uint32_t pixel) { return pixel | 0xFF000000U; });
    }
}

PixelBufferPtr scaled(const PixelBuffer& picture, bool hasAlpha,
                      const ScreenshotConfiguration& configuration) {
    auto small = std::make_shared<PixelBuffer>(
        areaScaled(picture, configuration.width, configuration.height));
    if (!hasAlpha) {
        makeOpaque(*small);
    }
    return small;
}

Result<PixelBufferPtr, CaptureError> captureWindow(const std::string& displayName,
                                                   std::uint32_t windowId,
                                                   const ScreenshotConfiguration& configuration) {
    auto grabber = WindowGrabber::open(displayName, windowId, 0, 0);
    if (!grabber) {
        return fail(grabber.error());
    }
    const auto shot = takeShot(**grabber);
    return shot ? Result<PixelBufferPtr, CaptureError>(
                      scaled(**shot, (*grabber)->hasAlpha(), configuration))
                : fail(shot.error());
}

Result<PixelBufferPtr, CaptureError> captureDisplay(const std::string& displayName,
                                                    std::uint32_t displayId,
                                                    const ScreenshotConfiguration& configuration) {
    auto grabber = ScreenGrabber::open(displayName, displayId, 0, 0);
    if (!grabber) {
        return fail(grabber.error());
    }
    const auto shot = takeShot(**grabber);
    if (!shot) {
        return fail(shot.error());
    }
    if (!configuration.showsCursor) {
        return scaled(**shot, false, configuration);
    }
    PixelBuffer picture = copyOf(**shot);
    drawCursor(picture, (*grabber)->frame(), displayName);
    return scaled(picture, false, configuration);
}

} // namespace

Result<PixelBufferPtr, CaptureError>
X11Screenshots::captureImage(const ScreenFilter& filter,
                             const ScreenshotConfiguration& configuration) {
    return filter.windowId != 0 ? captureWindow(m_displayName, filter.windowId, configuration)
                                : captureDisplay(m_displayName, filter.displayId, configuration);
}

} // namespace tavi
