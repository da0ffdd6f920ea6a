#include "platform/x11/DesktopArrow.h"

#include "capture/CursorImageBytes.h"
#include "platform/x11/XcursorTheme.h"

#include <algorithm>
#include <cstring>

namespace tavi {

namespace {

/// The smallest rectangle with all that is drawn; empty when nothing is.
PixelRect drawnArea(const PixelBuffer& image) {
    int left = image.width();
    int top = image.height();
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.row(y)[x * PixelBuffer::kBytesPerPixel + 3] != 0) {
                left = std::min(left, x);
                top = std::min(top, y);
                right = std::max(right, x + 1);
                bottom = std::max(bottom, y + 1);
            }
        }
    }
    return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

PixelBufferPtr cutOut(const PixelBuffer& image, const PixelRect& area) {
    auto part = std::make_shared<PixelBuffer>(area.width, area.height);
    const auto bytesOf = [](int pixels) {
        return static_cast<std::size_t>(pixels) * PixelBuffer::kBytesPerPixel;
    };
    for (int y = 0; y < area.height; ++y) {
        std::memcpy(part->row(y), image.row(area.y + y) + bytesOf(area.x), bytesOf(area.width));
    }
    return part;
}

} // namespace

PixelBufferPtr desktopArrow(int height) {
    XcursorChoice choice = xcursorChoice();
    if (const auto connection = XConnection::open("")) {
        choice = xcursorChoice(*connection);
    }
    choice.size = height;
    const auto arrow = themeArrow(choice, xcursorFolders());
    const PixelRect area = arrow ? drawnArea(arrow->image) : PixelRect{};
    return area.width > 0 && area.height > 0 ? cutOut(arrow->image, area) : nullptr;
}

std::optional<SystemCursor> desktopArrowCursor() {
    const auto arrow = themeArrow(xcursorChoice(), xcursorFolders());
    return arrow ? std::optional(systemCursor(arrow->image, arrow->hotSpotX, arrow->hotSpotY))
                 : std::nullopt;
}

} // namespace tavi
