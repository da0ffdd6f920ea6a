#include "render/BackgroundPictures.h"

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
        pixel[c] = static_cast<std::uint8_t>(mix[c] + 0.5);
    }
    pixel[3] = 255;
}

/// A blob in pixels of the output.
struct PlacedBlob {
    Point center;
    double radius = 0;
    Mix color{};
    double alpha = 0;

    void drawOver(Mix& mix, double dx, double dySquared) const {
        const double distance = std::sqrt(dx * dx + dySquared);
        if (!(distance < radius)) {
            return;
        }
        const double fade = 1 - distance / radius;
        const double rest = 1 - alpha * fade;
        for (std::size_t c = 0; c < mix.size(); ++c) {
            mix[c] = color[c] * fade + mix[c] * rest;
        }
    }
};

PlacedBlob place(const WallpaperBlob& blob, Size area) {
    return {{blob.cx * area.width, blob.cy * area.height},
            std::max(area.width, area.height) * blob.radiusFraction,
            premultiplied(blob.color),
            limited(blob.color.alpha)};
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

PixelBuffer wallpaperImage(const Wallpaper& wallpaper, Size area, int width, int height) {
    std::array<PlacedBlob, 3> blobs{};
    std::transform(wallpaper.blobs.begin(), wallpaper.blobs.end(), blobs.begin(),
                   [&](const WallpaperBlob& blob) { return place(blob, area); });
    const Mix base = premultiplied(wallpaper.baseColor);
    PixelBuffer image(width, height);
    for (int row = 0; row < height; ++row) {
        const double y = height - row - 0.5;
        for (int x = 0; x < width; ++x) {
            Mix mix = base;
            for (const PlacedBlob& blob : blobs) {
                const double dy = y - blob.center.y;
                blob.drawOver(mix, x + 0.5 - blob.center.x, dy * dy);
            }
            store(mix, image.row(row) + static_cast<std::ptrdiff_t>(x) * 4);
        }
    }
    return image;
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
