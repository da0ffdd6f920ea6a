#include "render/BackgroundPresets.h"

#include <algorithm>

namespace tavi {

namespace {

constexpr std::array<GradientPreset, 8> kGradients{{
    {"midnight", {{{0.05, 0.05, 0.2}, {0.15, 0.0, 0.35}}}, 135},
    {"sunset", {{{0.95, 0.3, 0.2}, {0.95, 0.6, 0.1}}}, 45},
    {"ocean", {{{0.0, 0.3, 0.6}, {0.0, 0.6, 0.5}}}, 160},
    {"berry", {{{0.6, 0.1, 0.4}, {0.2, 0.1, 0.5}}}, 120},
    {"moss", {{{0.1, 0.35, 0.15}, {0.2, 0.5, 0.3}}}, 90},
    {"peach", {{{0.95, 0.6, 0.5}, {0.95, 0.8, 0.6}}}, 45},
    {"steel", {{{0.15, 0.18, 0.22}, {0.3, 0.33, 0.38}}}, 135},
    {"candy", {{{0.9, 0.2, 0.5}, {0.4, 0.2, 0.9}}}, 60},
}};

// In the order of WallpaperPreset.
constexpr std::array<Wallpaper, 6> kWallpapers{{
    {{0.02, 0.05, 0.15},
     {{{0.2, 0.3, 0.6, {0.1, 0.8, 0.6, 0.7}},
       {0.8, 0.7, 0.5, {0.3, 0.2, 0.9, 0.7}},
       {0.5, 0.5, 0.4, {0.0, 0.5, 0.8, 0.6}}}}},
    {{0.15, 0.02, 0.08},
     {{{0.3, 0.2, 0.55, {0.95, 0.3, 0.15, 0.7}},
       {0.7, 0.6, 0.5, {0.9, 0.55, 0.1, 0.6}},
       {0.5, 0.8, 0.45, {0.6, 0.1, 0.3, 0.5}}}}},
    {{0.01, 0.05, 0.12},
     {{{0.25, 0.4, 0.55, {0.0, 0.4, 0.7, 0.7}},
       {0.75, 0.3, 0.5, {0.0, 0.6, 0.55, 0.6}},
       {0.5, 0.75, 0.45, {0.05, 0.25, 0.5, 0.5}}}}},
    {{0.08, 0.03, 0.15},
     {{{0.3, 0.3, 0.55, {0.5, 0.2, 0.8, 0.7}},
       {0.7, 0.5, 0.5, {0.7, 0.3, 0.9, 0.6}},
       {0.4, 0.7, 0.4, {0.3, 0.15, 0.6, 0.5}}}}},
    {{0.1, 0.03, 0.02},
     {{{0.3, 0.4, 0.55, {0.85, 0.2, 0.05, 0.7}},
       {0.7, 0.3, 0.5, {0.95, 0.5, 0.0, 0.6}},
       {0.5, 0.7, 0.4, {0.7, 0.1, 0.1, 0.5}}}}},
    {{0.02, 0.08, 0.04},
     {{{0.25, 0.35, 0.55, {0.1, 0.5, 0.2, 0.7}},
       {0.7, 0.5, 0.5, {0.05, 0.4, 0.3, 0.6}},
       {0.5, 0.75, 0.4, {0.2, 0.6, 0.15, 0.5}}}}},
}};

static_assert(kWallpapers.size() == RawValues<WallpaperPreset>::names.size());

} // namespace

std::span<const GradientPreset> gradientPresets() {
    return kGradients;
}

const GradientPreset& gradientPreset(std::int64_t index) {
    const auto last = static_cast<std::int64_t>(kGradients.size()) - 1;
    return kGradients[static_cast<std::size_t>(std::clamp<std::int64_t>(index, 0, last))];
}

const Wallpaper& wallpaper(WallpaperPreset preset) {
    return kWallpapers[static_cast<std::size_t>(preset)];
}

} // namespace tavi
