#include "editor/ChoicePictures.h"

#include "render/BackgroundPictures.h"

#include <map>
#include <memory>
#include <tuple>

namespace tavi {

namespace {

constexpr Size kSize{144, 96}; ///< Pixels: enough for a tile at scale 2.
constexpr CodableColor kBlurTile{0.12, 0.12, 0.14, 1};

PixelBuffer drawn(const AppearanceSettings& look) {
    const int width = static_cast<int>(kSize.width);
    const int height = static_cast<int>(kSize.height);
    switch (look.backgroundStyle) {
    case BackgroundStyle::solidWhite:
        return solidImage({1, 1, 1, 1}, width, height);
    case BackgroundStyle::solidCustom:
        return solidImage(look.solidColor, width, height);
    case BackgroundStyle::gradient:
        return gradientImage(gradientPreset(look.gradientPresetIndex), kSize, width, height);
    case BackgroundStyle::blur:
        return solidImage(kBlurTile, width, height);
    case BackgroundStyle::wallpaper: {
        PixelBuffer image(width, height);
        drawWallpaper(wallpaper(look.wallpaperPreset), kSize, image);
        return image;
    }
    case BackgroundStyle::solidBlack:
        break;
    }
    return solidImage({0, 0, 0, 1}, width, height);
}

/// The look that a choice stands for.
AppearanceSettings lookOf(const InspectorControl& control, std::size_t choice,
                          const AppearanceSettings& settings) {
    EditProject project;
    project.appearanceSettings = settings;
    control.setValue(project, static_cast<double>(choice));
    AppearanceSettings& look = project.appearanceSettings;
    if (control.kind == InspectorControl::Kind::gradients) {
        look.backgroundStyle = BackgroundStyle::gradient;
    } else if (control.kind == InspectorControl::Kind::wallpapers) {
        look.backgroundStyle = BackgroundStyle::wallpaper;
    }
    return look;
}

} // namespace

PixelBufferPtr choicePicture(const InspectorControl& control, std::size_t choice,
                             const AppearanceSettings& settings) {
    using Kind = InspectorControl::Kind;
    if (control.kind != Kind::tiles && control.kind != Kind::gradients &&
        control.kind != Kind::wallpapers) {
        return nullptr;
    }
    const AppearanceSettings look = lookOf(control, choice, settings);
    if (look.backgroundStyle == BackgroundStyle::solidCustom) {
        return std::make_shared<const PixelBuffer>(drawn(look)); // of any colour: not kept
    }
    static std::map<std::tuple<BackgroundStyle, std::int64_t, WallpaperPreset>, PixelBufferPtr>
        kept;
    PixelBufferPtr& picture =
        kept[{look.backgroundStyle, look.gradientPresetIndex, look.wallpaperPreset}];
    if (!picture) {
        picture = std::make_shared<const PixelBuffer>(drawn(look));
    }
    return picture;
}

} // namespace tavi
