#include "render/BackgroundPictures.h"

#include "render/BlobRow.h"
#include "render/Composite.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace tavi {

namespace {

constexpr double kWhole = 255.0;
constexpr double kTurnSeconds = 20.0; // one turn of a moving wallpaper
constexpr double kDrift = 0.05;       // of the output: how far a blob wanders
constexpr double kBreath = 0.08;      // of its radius: how much a blob grows and shrinks

double limited(double part) {
    return part > 0 ? std::min(part, 1.0) : 0; // also turns what is no number into 0
}

/// Blue, green, red, as premultiplied values from 0 to 255.
using Mix = std::array<double, 3>;

Mix premultiplied(const CodableColor& color) {
    const double scale = kWhole * limited(color.alpha);
    return {limited(color.blue) * scale, limited(color.green) * scale, limited(color.red) * scale};
}

void store(const Mix& mix, std::uint8_t* pixel) {
    for (std::size_t c = 0; c < mix.size(); ++c) {
        pixel[c] = static_cast<std::uint8_t>(std::lround(mix[c]));
    }
    pixel[3] = 255;
}

std::array<float, 3> asFloats(const Mix& mix) {
    return {static_cast<float>(mix[0]), static_cast<float>(mix[1]), static_cast<float>(mix[2])};
}

/// The blob as the row of pixels sees it whose middle lies at `y`. One without a
/// radius shows nowhere.
BlobRow::Blob onRow(const WallpaperBlob& blob, Size area, double y) {
    const double radius = std::max(area.width, area.height) * blob.radiusFraction;
    if (!(radius > 0) || !std::isfinite(radius)) {
        return {};
    }
    const double dy = y - blob.cy * area.height;
    return {static_cast<float>(blob.cx * area.width), static_cast<float>(dy * dy),
            static_cast<float>(1 / radius), asFloats(premultiplied(blob.color)),
            static_cast<float>(limited(blob.color.alpha))};
}

} // namespace

PixelBuffer solidImage(const CodableColor& color, int width, int height) {
    PixelBuffer image(width, height);
    std::array<std::uint8_t, 4> pixel{};
    store(premultiplied(color), pixel.data());
    fill(image, pixel.data());
    return image;
}

PixelBuffer gradientImage(const GradientPreset& preset, Size area, int width, int height) {
    const double half = std::max(area.width, area.height) * 0.5;
    const double angle = preset.angle * std::numbers::pi / 180;
    const Point direction{std::cos(angle) * half, std::sin(angle) * half};
    const Point start{area.width / 2 - direction.x, area.height / 2 - direction.y};
    const double perUnit = 1 / (2 * half * half); // length of the ramp is 2 * half
    const Mix from = premultiplied(preset.colors.front());
    const Mix to = premultiplied(preset.colors.back());
    PixelBuffer image(width, height);
    for (int row = 0; row < height; ++row) {
        const double dy = height - row - 0.5 - start.y;
        for (int x = 0; x < width; ++x) {
            const double dx = x + 0.5 - start.x;
            const double t = limited((dx * direction.x + dy * direction.y) * perUnit);
            Mix mix{};
            for (std::size_t c = 0; c < mix.size(); ++c) {
                mix[c] = from[c] + (to[c] - from[c]) * t;
            }
            store(mix, image.row(row) + static_cast<std::ptrdiff_t>(x) * 4);
        }
    }
    return image;
}

void drawWallpaper(const Wallpaper& wallpaper, Size area, ImageView out) {
    BlobRow row;
    row.base = asFloats(premultiplied(wallpaper.baseColor));
    for (int y = 0; y < out.height; ++y) {
        const double middle = out.height - y - 0.5;
        std::transform(wallpaper.blobs.begin(), wallpaper.blobs.end(), row.blobs.begin(),
                       [&](const WallpaperBlob& blob) { return onRow(blob, area, middle); });
        drawBlobRow(row, out.row(y), out.width);
    }
}

Wallpaper movedWallpaper(const Wallpaper& wallpaper, double time) {
    const double w = time * 2 * std::numbers::pi / kTurnSeconds;
    Wallpaper moved = wallpaper;
    for (std::size_t i = 0; i < moved.blobs.size(); ++i) {
        const double phase = 2 * static_cast<double>(i) * std::numbers::pi / 3;
        WallpaperBlob& blob = moved.blobs[i];
        blob.cx += std::sin(w + phase) * kDrift;
        blob.cy += std::cos(w + phase * 1.3) * kDrift;
        blob.radiusFraction *= 1 + std::sin(w * 0.7 + phase) * kBreath;
    }
    return moved;
}

} // namespace tavi
