#include "cursor/CursorPictures.h"

#include "cursor/AlphaBlur.h"
#include "cursor/CairoCanvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <mutex>
#include <numbers>
#include <optional>

namespace tavi {

namespace {

constexpr double kLargestPicture = 2048; // pixels a side; larger ones can't be seen whole

// The built-in arrow, in units of which its size counts 22, y downwards.
constexpr double kArrowUnits = 22;
constexpr double kArrowWidth = 17;
constexpr double kArrowHeight = 24;
constexpr std::array<Point, 7> kArrow{
    {{1, 1}, {1, 20}, {5.5, 15.5}, {10, 22}, {12.5, 20.5}, {8, 13.5}, {14, 13.5}}};
constexpr double kArrowOutline = 1.2;
constexpr double kArrowOutlineAlpha = 0.85;

// The disc and its shadow, in pixels.
constexpr double kDiscInset = 2;
constexpr double kDiscAlpha = 0.95;
constexpr double kDiscShadowAlpha = 0.5;
constexpr double kDiscShadowSigma = 1.5;
constexpr double kDiscShadowDrop = 1;

// The ripple.
constexpr double kRippleGrowth = 1.5; // of its radius, over its life
constexpr double kRippleAlpha = 0.4;
constexpr double kRippleRimAlpha = 0.8; // of the fill's
constexpr double kRippleRimWidth = 1.5;
constexpr double kRippleInset = 2;

/// Rounded up to whole pixels; 0 for what isn't a positive number.
int wholePixels(double size) {
    return size > 0 ? static_cast<int>(std::ceil(std::min(size, kLargestPicture))) : 0;
}

PixelBufferPtr emptyPicture() {
    static const auto empty = std::make_shared<const PixelBuffer>();
    return empty;
}

/// The last picture of one kind, with the size that it was made for.
class PictureSlot {
public:
    PixelBufferPtr find(double size) {
        const std::lock_guard lock(m_mutex);
        return m_image && m_size == size ? m_image : nullptr;
    }
    void store(double size, PixelBufferPtr image) {
        const std::lock_guard lock(m_mutex);
        m_size = size;
        m_image = std::move(image);
    }

private:
    std::mutex m_mutex;
    double m_size = 0;
    PixelBufferPtr m_image;
};

PictureSlot& pointerSlot() {
    static PictureSlot slot;
    return slot;
}

PictureSlot& circleSlot() {
    static PictureSlot slot;
    return slot;
}

/// The desktop's arrow as it was given.
class DesktopArrow {
public:
    PixelBufferPtr get() {
        const std::lock_guard lock(m_mutex);
        return m_arrow;
    }
    void set(PixelBufferPtr arrow) {
        const std::lock_guard lock(m_mutex);
        m_arrow = std::move(arrow);
    }
    static DesktopArrow& shared() {
        static DesktopArrow arrow;
        return arrow;
    }

private:
    std::mutex m_mutex;
    PixelBufferPtr m_arrow;
};

/// The last picture of each captured cursor. An entry counts for its source image
/// only, so that two takes in one process don't see each other's cursors.
class SystemPictures {
public:
    PixelBufferPtr find(std::int64_t id, double size, const PixelBufferPtr& source) {
        const std::lock_guard lock(m_mutex);
        const auto entry = m_entries.find(id);
        const bool isThis = entry != m_entries.end() && entry->second.size == size &&
                            entry->second.source == source;
        return isThis ? entry->second.image : nullptr;
    }
    void store(std::int64_t id, double size, PixelBufferPtr source, PixelBufferPtr image) {
        const std::lock_guard lock(m_mutex);
        m_entries[id] = {size, std::move(source), std::move(image)};
    }
    static SystemPictures& shared() {
        static SystemPictures pictures;
        return pictures;
    }

private:
    struct Entry {
        double size = 0;
        PixelBufferPtr source;
        PixelBufferPtr image;
    };
    std::mutex m_mutex;
    std::map<std::int64_t, Entry> m_entries;
};

/// `picture` scaled to fill whole pixels; null when that can't be drawn.
PixelBufferPtr scaledPicture(const PixelBuffer& picture, int width, int height) {
    if (width <= 0 || height <= 0 || picture.empty()) {
        return nullptr;
    }
    auto image = std::make_shared<PixelBuffer>(width, height);
    CairoCanvas canvas(*image);
    canvas.drawScaled(picture, width, height);
    return canvas.isValid() ? image : nullptr;
}

PixelBufferPtr drawBuiltInArrow(double size) {
    const double unit = size / kArrowUnits;
    auto image = std::make_shared<PixelBuffer>(wholePixels(kArrowWidth * unit),
                                               wholePixels(kArrowHeight * unit));
    if (image->empty()) {
        return image;
    }
    const CairoCanvas canvas(*image);
    cairo_t* context = canvas.context();
    cairo_scale(context, unit, unit);
    for (const Point& corner : kArrow) {
        cairo_line_to(context, corner.x, corner.y);
    }
    cairo_close_path(context);
    cairo_set_source_rgb(context, 1, 1, 1);
    cairo_fill_preserve(context);
    cairo_set_source_rgba(context, 0, 0, 0, kArrowOutlineAlpha);
    cairo_set_line_width(context, kArrowOutline);
    cairo_stroke(context);
    return image;
}

/// Kept in a slot of its own: it never stands in for a desktop arrow that comes later.
PixelBufferPtr builtInArrow(double size) {
    static PictureSlot slot;
    PixelBufferPtr image = slot.find(size);
    if (!image) {
        image = drawBuiltInArrow(size);
        slot.store(size, image);
    }
    return image;
}

void ellipsePath(cairo_t* context, double inset, double size) {
    cairo_new_path(context);
    cairo_arc(context, size / 2, size / 2, size / 2 - inset, 0, 2 * std::numbers::pi);
    cairo_close_path(context);
}

/// Puts the blurred shadow of what was drawn under it, kDiscShadowDrop lower.
void addShadow(PixelBuffer& image) {
    const int size = image.height();
    AlphaPicture alpha(size, size);
    const int drop = static_cast<int>(kDiscShadowDrop);
    for (int y = drop; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            alpha.at(x, y) = image.row(y - drop)[x * 4 + 3];
        }
    }
    alpha = gaussianBlurred(alpha, kDiscShadowSigma);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            std::uint8_t& a = image.row(y)[x * 4 + 3];
            const double shadow = alpha.at(x, y) * kDiscShadowAlpha;
            a = static_cast<std::uint8_t>(std::lround(a + shadow * (255 - a) / 255));
        }
    }
}

} // namespace

void setDesktopArrow(PixelBufferPtr arrow) {
    DesktopArrow::shared().set(std::move(arrow));
    pointerSlot().store(0, nullptr);
}

PixelBufferPtr pointerImage(double size) {
    if (PixelBufferPtr kept = pointerSlot().find(size)) {
        return kept;
    }
    const PixelBufferPtr arrow = DesktopArrow::shared().get();
    if (arrow && !arrow->empty()) {
        const double width = size * arrow->width() / arrow->height();
        if (PixelBufferPtr image = scaledPicture(*arrow, wholePixels(width), wholePixels(size))) {
            pointerSlot().store(size, image);
            return image;
        }
    }
    return builtInArrow(size);
}

PixelBufferPtr circleImage(double size) {
    if (PixelBufferPtr kept = circleSlot().find(size)) {
        return kept;
    }
    const int n = wholePixels(size);
    auto image = std::make_shared<PixelBuffer>(n, n);
    if (n > 2 * kDiscInset) {
        {
            const CairoCanvas canvas(*image);
            ellipsePath(canvas.context(), kDiscInset, n);
            cairo_set_source_rgba(canvas.context(), 1, 1, 1, kDiscAlpha);
            cairo_fill(canvas.context());
        }
        addShadow(*image);
    }
    circleSlot().store(size, image);
    return image;
}

PixelBufferPtr systemImage(std::int64_t id, double size, std::span<const PixelBufferPtr> images,
                           std::span<const CursorImageInfo> infos) {
    const auto index = static_cast<std::size_t>(id);
    if (id < 0 || index >= images.size() || !images[index]) {
        return pointerImage(size);
    }
    const PixelBufferPtr& source = images[index];
    if (PixelBufferPtr kept = SystemPictures::shared().find(id, size, source)) {
        return kept;
    }
    const bool isKnown = index < infos.size();
    const double width = isKnown ? infos[index].width : source->width();
    const double height = isKnown ? infos[index].height : source->height();
    if (!(height > 0)) {
        return pointerImage(size);
    }
    PixelBufferPtr image =
        scaledPicture(*source, wholePixels(width / height * size), wholePixels(size));
    if (!image) {
        return pointerImage(size);
    }
    SystemPictures::shared().store(id, size, source, image);
    return image;
}

PlacedPicture clickEffectImage(double x, double y, double progress, double radius) {
    const double r = (progress * kRippleGrowth + 1.0) * radius;
    const int n = wholePixels(r + r);
    if (n < 1) {
        return {emptyPicture(), {x - r, y - r}};
    }
    auto image = std::make_shared<PixelBuffer>(n, n);
    if (n > 2 * kRippleInset) {
        const double alpha = (1 - progress) * kRippleAlpha;
        const CairoCanvas canvas(*image);
        ellipsePath(canvas.context(), kRippleInset, n);
        cairo_set_source_rgba(canvas.context(), 1, 1, 1, alpha);
        cairo_fill_preserve(canvas.context());
        cairo_set_source_rgba(canvas.context(), 1, 1, 1, alpha * kRippleRimAlpha);
        cairo_set_line_width(canvas.context(), kRippleRimWidth);
        cairo_stroke(canvas.context());
    }
    return {image, {x - r, y - r}};
}

} // namespace tavi
