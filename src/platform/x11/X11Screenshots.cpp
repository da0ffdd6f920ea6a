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

/// Brings the picture to what it shows now.
Result<void, CaptureError> takeShot(Grabber& grabber) {
    static_cast<void>(grabber.hasNews());
    const PixelRect taken = grabber.grab();
    if (auto failure = grabber.failure()) {
        return fail(std::move(*failure));
    }
    return taken.isEmpty() ? fail(CaptureError{CaptureError::Kind::sourceGone, "it isn't shown"})
                           : Result<void, CaptureError>();
}

PixelBufferPtr scaled(const PixelBuffer& picture, const ScreenshotConfiguration& configuration) {
    return std::make_shared<const PixelBuffer>(
        areaScaled(picture, configuration.width, configuration.height));
}

Result<PixelBufferPtr, CaptureError> captureWindow(const std::string& displayName,
                                                   std::uint32_t windowId,
                                                   const ScreenshotConfiguration& configuration) {
    auto grabber = WindowGrabber::open(displayName, windowId, 0, 0);
    if (!grabber) {
        return fail(grabber.error());
    }
    if (const auto shot = takeShot(**grabber); !shot) {
        return fail(shot.error());
    }
    return scaled((*grabber)->picture(), configuration);
}

Result<PixelBufferPtr, CaptureError> captureDisplay(const std::string& displayName,
                                                    std::uint32_t displayId,
                                                    const ScreenshotConfiguration& configuration) {
    auto grabber = ScreenGrabber::open(displayName, displayId, 0, 0);
    if (!grabber) {
        return fail(grabber.error());
    }
    if (const auto shot = takeShot(**grabber); !shot) {
        return fail(shot.error());
    }
    if (!configuration.showsCursor) {
        return scaled((*grabber)->picture(), configuration);
    }
    PixelBuffer picture = copyOf((*grabber)->picture());
    drawCursor(picture, (*grabber)->frame(), displayName);
    return scaled(picture, configuration);
}

} // namespace

Result<PixelBufferPtr, CaptureError>
X11Screenshots::captureImage(const ScreenFilter& filter,
                             const ScreenshotConfiguration& configuration) {
    return filter.windowId != 0 ? captureWindow(m_displayName, filter.windowId, configuration)
                                : captureDisplay(m_displayName, filter.displayId, configuration);
}

} // namespace tavi
