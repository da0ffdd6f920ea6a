#include "editor/InspectorControls.h"

#include "render/BackgroundPresets.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

/// Marks a text for the translators; the view model translates it where it is shown. (Qt's own
/// macro of this name is what their tool looks for.)
#define QT_TRANSLATE_NOOP(context, text) text

namespace tavi {

namespace {

using Control = InspectorControl;
using Kind = InspectorControl::Kind;
using Choices = std::vector<InspectorControl::Choice>;

std::string percent(double value) {
    return fmt::format("{:.0f}%", 100 * value);
}

std::string number(double value) {
    return fmt::format("{:.0f}", value);
}

std::string pixels(double value) {
    return fmt::format("{:.0f}px", value);
}

std::string seconds(double value) {
    return fmt::format("{:.1f}s", value);
}

// Enums whose choices stand in another order than their cases.
constexpr std::array kCursorStyles{CursorStyle::pointer, CursorStyle::system, CursorStyle::circle};
constexpr std::array kWallpaperRow{WallpaperPreset::aurora,   WallpaperPreset::sunset,
                                   WallpaperPreset::ocean,    WallpaperPreset::forest,
                                   WallpaperPreset::lavender, WallpaperPreset::ember};
constexpr std::array kCorners{CameraPosition::topLeft, CameraPosition::topRight,
                              CameraPosition::bottomLeft, CameraPosition::bottomRight};

template<typename Row, typename Enum>
double indexOf(const Row& row, Enum value) {
    return static_cast<double>(std::ranges::find(row, value) - row.begin());
}

template<typename Row>
auto at(const Row& row, double index) {
    const double last = static_cast<double>(row.size()) - 1;
    return row[static_cast<std::size_t>(std::clamp(index, 0.0, last))];
}

template<typename Enum>
Enum enumOf(double index) {
    const double last = static_cast<double>(RawValues<Enum>::names.size()) - 1;
    return static_cast<Enum>(std::clamp(index, 0.0, last));
}

bool hasStyle(const EditProject& project, BackgroundStyle style) {
    return project.appearanceSettings.backgroundStyle == style;
}

Choices labels(std::span<const std::string_view> texts) {
    Choices choices;
    for (const std::string_view text : texts) {
        choices.push_back({text, {}});
    }
    return choices;
}

Choices gradientNames() {
    Choices choices;
    for (const GradientPreset& preset : gradientPresets()) {
        choices.push_back({preset.id, {}});
    }
    return choices;
}

/// A field that a control shows and edits: a member of one of the project's records.
template<auto Settings, auto Field>
struct On {
    static double get(const EditProject& project) {
        return static_cast<double>(project.*Settings.*Field);
    }
    static void set(EditProject& project, double value) {
        auto& field = project.*Settings.*Field;
        field = static_cast<std::remove_reference_t<decltype(field)>>(value);
    }
};

template<auto Field>
using Look = On<&EditProject::appearanceSettings, Field>;
template<auto Field>
using Cursor = On<&EditProject::cursorSettings, Field>;
template<auto Field>
using Camera = On<&EditProject::cameraSettings, Field>;
template<auto Field>
using Output = On<&EditProject::outputSettings, Field>;

using Shown = bool (*)(const EditProject&, bool);

Control title(std::string_view label) {
    return {.kind = Kind::title, .label = label};
}

template<typename Field>
Control titleSwitch(std::string_view label, Shown isShown = nullptr) {
    return {.kind = Kind::title,
            .label = label,
            .value = Field::get,
            .setValue = Field::set,
            .isShown = isShown};
}

template<typename Field>
Control toggle(std::string_view label, Shown isShown = nullptr) {
    Control control = titleSwitch<Field>(label, isShown);
    control.kind = Kind::toggle;
    return control;
}

struct Range {
    double from;
    double to;
    double step;
};

template<typename Field>
Control slider(std::string_view label, Range range, std::string (*format)(double),
               Shown isShown = nullptr) {
    return {.kind = Kind::slider,
            .label = label,
            .from = range.from,
            .to = range.to,
            .step = range.step,
            .format = format,
            .value = Field::get,
            .setValue = Field::set,
            .isShown = isShown};
}

Choices aspectChoices() {
    Choices choices;
    for (const AspectChoice& choice : kAspectChoices) {
        choices.push_back({choice.label, {}});
    }
    return choices;
}

/// What surrounds the video.
void addFrame(std::vector<Control>& all) {
    all.push_back({.kind = Kind::choice,
                   .label = QT_TRANSLATE_NOOP("Inspector", "Aspect Ratio"),
                   .choices = aspectChoices(),
                   .value = Output<&OutputSettings::autoAspectRatio>::get,
                   .setValue = Output<&OutputSettings::autoAspectRatio>::set});
    all.push_back(slider<Look<&AppearanceSettings::padding>>(
        QT_TRANSLATE_NOOP("Inspector", "Background Size"), {0, 0.3, 0.01}, percent));
}

/// In the order of BackgroundStyle; what has no picture of its own has a symbol.
Choices styleChoices() {
    return {{QT_TRANSLATE_NOOP("Inspector", "Black"), {}},
            {QT_TRANSLATE_NOOP("Inspector", "White"), {}},
            {QT_TRANSLATE_NOOP("Inspector", "Custom"), {}},
            {QT_TRANSLATE_NOOP("Inspector", "Gradient"), {}},
            {QT_TRANSLATE_NOOP("Inspector", "Blur"), "aqi.medium"},
            {QT_TRANSLATE_NOOP("Inspector", "Aurora"), {}}};
}

void addBackground(std::vector<Control>& all) {
    all.push_back(title(QT_TRANSLATE_NOOP("Inspector", "APPEARANCE")));
    all.push_back({.kind = Kind::tiles,
                   .label = QT_TRANSLATE_NOOP("Inspector", "Background"),
                   .choices = styleChoices(),
                   .value = Look<&AppearanceSettings::backgroundStyle>::get,
                   .setValue = [](EditProject& project, double index) {
                       project.appearanceSettings.backgroundStyle = enumOf<BackgroundStyle>(index);
                   }});
    all.push_back({.kind = Kind::color,
                   .label = QT_TRANSLATE_NOOP("Inspector", "Color"),
                   .isShown = [](const EditProject& p, bool) {
                       return hasStyle(p, BackgroundStyle::solidCustom);
                   }});
    all.push_back({.kind = Kind::gradients,
                   .label = QT_TRANSLATE_NOOP("Inspector", "Preset"),
                   .choices = gradientNames(),
                   .value = Look<&AppearanceSettings::gradientPresetIndex>::get,
                   .setValue = Look<&AppearanceSettings::gradientPresetIndex>::set,
                   .isShown = [](const EditProject& p, bool) {
                       return hasStyle(p, BackgroundStyle::gradient);
                   }});
    all.push_back(slider<Look<&AppearanceSettings::blurRadius>>(
        QT_TRANSLATE_NOOP("Inspector", "Blur Radius"), {20, 80, 5}, number,
        [](const EditProject& p, bool) { return hasStyle(p, BackgroundStyle::blur); }));
}

void addWallpaper(std::vector<Control>& all) {
    static constexpr std::array<std::string_view, 6> kNames{
        QT_TRANSLATE_NOOP("Inspector", "aurora"),   QT_TRANSLATE_NOOP("Inspector", "sunset"),
        QT_TRANSLATE_NOOP("Inspector", "ocean"),    QT_TRANSLATE_NOOP("Inspector", "forest"),
        QT_TRANSLATE_NOOP("Inspector", "lavender"), QT_TRANSLATE_NOOP("Inspector", "ember")};
    const Shown isShown = [](const EditProject& p, bool) {
        return hasStyle(p, BackgroundStyle::wallpaper);
    };
    all.push_back({.kind = Kind::wallpapers,
                   .label = QT_TRANSLATE_NOOP("Inspector", "Preset"),
                   .choices = labels(kNames),
                   .value =
                       [](const EditProject& p) {
                           return indexOf(kWallpaperRow, p.appearanceSettings.wallpaperPreset);
                       },
                   .setValue =
                       [](EditProject& p, double index) {
                           p.appearanceSettings.wallpaperPreset = at(kWallpaperRow, index);
                       },
                   .isShown = isShown});
    all.push_back(toggle<Look<&AppearanceSettings::animateBackground>>(
        QT_TRANSLATE_NOOP("Inspector", "Animate"), isShown));
}

void addCorners(std::vector<Control>& all) {
    const Shown hasShadow = [](const EditProject& p, bool) {
        return p.appearanceSettings.shadowEnabled;
    };
    all.push_back(slider<Look<&AppearanceSettings::cornerRadius>>(
        QT_TRANSLATE_NOOP("Inspector", "Corner Radius"), {0, 40, 1}, pixels));
    all.push_back(
        toggle<Look<&AppearanceSettings::shadowEnabled>>(QT_TRANSLATE_NOOP("Inspector", "Shadow")));
    all.push_back(slider<Look<&AppearanceSettings::shadowRadius>>(
        QT_TRANSLATE_NOOP("Inspector", "Radius"), {5, 50, 1}, number, hasShadow));
    all.push_back(slider<Look<&AppearanceSettings::shadowOpacity>>(
        QT_TRANSLATE_NOOP("Inspector", "Opacity"), {0.1, 1, 0.1}, percent, hasShadow));
}

void addCursor(std::vector<Control>& all) {
    static constexpr std::array<std::string_view, 5> kPresets{
        QT_TRANSLATE_NOOP("Inspector", "None"), QT_TRANSLATE_NOOP("Inspector", "Slow"),
        QT_TRANSLATE_NOOP("Inspector", "Medium"), QT_TRANSLATE_NOOP("Inspector", "Fast"),
        QT_TRANSLATE_NOOP("Inspector", "Rapid")};
    all.push_back(
        titleSwitch<Cursor<&CursorSettings::showCursor>>(QT_TRANSLATE_NOOP("Inspector", "CURSOR")));
    all.push_back({.kind = Kind::choice,
                   .label = QT_TRANSLATE_NOOP("Inspector", "Style"),
                   .choices = {{QT_TRANSLATE_NOOP("Inspector", "Pointer"), "cursorarrow.rays"},
                               {QT_TRANSLATE_NOOP("Inspector", "System"), "cursorarrow"},
                               {QT_TRANSLATE_NOOP("Inspector", "Circle"), "circle.fill"}},
                   .value =
                       [](const EditProject& p) {
                           return indexOf(kCursorStyles, p.cursorSettings.cursorStyle);
                       },
                   .setValue =
                       [](EditProject& p, double index) {
                           p.cursorSettings.cursorStyle = at(kCursorStyles, index);
                       }});
    all.push_back(slider<Cursor<&CursorSettings::cursorSize>>(
        QT_TRANSLATE_NOOP("Inspector", "Size"), {12, 120, 2}, pixels));
    all.push_back({.kind = Kind::choice,
                   .label = QT_TRANSLATE_NOOP("Inspector", "Smoothing"),
                   .choices = labels(kPresets),
                   .value = Cursor<&CursorSettings::smoothingPreset>::get,
                   .setValue = [](EditProject& p, double index) {
                       p.cursorSettings.smoothingPreset = enumOf<CursorSmoothingPreset>(index);
                   }});
}

void addKeystrokes(std::vector<Control>& all) {
    all.push_back(titleSwitch<Cursor<&CursorSettings::showKeystrokes>>(
        QT_TRANSLATE_NOOP("Inspector", "KEYSTROKES")));
    all.push_back({.kind = Kind::choice,
                   .label = QT_TRANSLATE_NOOP("Inspector", "Size"),
                   .choices = labels(RawValues<KeystrokeSize>::names),
                   .value = Cursor<&CursorSettings::keystrokeSize>::get,
                   .setValue = [](EditProject& p, double index) {
                       p.cursorSettings.keystrokeSize = enumOf<KeystrokeSize>(index);
                   }});
    all.push_back(slider<Cursor<&CursorSettings::keystrokeDisplayDuration>>(
        QT_TRANSLATE_NOOP("Inspector", "Display Duration"), {1, 5, 0.5}, seconds));
}

bool hasCamera(const EditProject&, bool isThere) {
    return isThere;
}

void addCameraShape(std::vector<Control>& all) {
    all.push_back(slider<Camera<&CameraSettings::sizeFraction>>(
        QT_TRANSLATE_NOOP("Inspector", "Size"), {0.1, 0.4, 0.02}, percent, hasCamera));
    all.push_back(slider<Camera<&CameraSettings::cornerRadius>>(
        QT_TRANSLATE_NOOP("Inspector", "Corner Radius"), {0, 420, 0}, pixels, hasCamera));
    all.push_back(slider<Camera<&CameraSettings::marginFraction>>(
        QT_TRANSLATE_NOOP("Inspector", "Margin"), {0.01, 0.1, 0.01}, percent, hasCamera));
    all.push_back(slider<Camera<&CameraSettings::borderWidth>>(
        QT_TRANSLATE_NOOP("Inspector", "Border"), {0, 8, 1}, pixels, hasCamera));
    all.push_back(toggle<Camera<&CameraSettings::shadowEnabled>>(
        QT_TRANSLATE_NOOP("Inspector", "Shadow"), hasCamera));
}

void addCamera(std::vector<Control>& all) {
    static constexpr std::array<std::string_view, 4> kCornerNames{
        QT_TRANSLATE_NOOP("Inspector", "Top Left"), QT_TRANSLATE_NOOP("Inspector", "Top Right"),
        QT_TRANSLATE_NOOP("Inspector", "Bottom Left"),
        QT_TRANSLATE_NOOP("Inspector", "Bottom Right")};
    const Shown hasNone = [](const EditProject&, bool isThere) { return !isThere; };
    all.push_back(titleSwitch<Camera<&CameraSettings::enabled>>(
        QT_TRANSLATE_NOOP("Inspector", "CAMERA"), hasCamera));
    Control plainTitle = title(QT_TRANSLATE_NOOP("Inspector", "CAMERA"));
    plainTitle.isShown = hasNone;
    all.push_back(plainTitle);
    all.push_back({.kind = Kind::note,
                   .label = QT_TRANSLATE_NOOP("Inspector", "No camera recorded"),
                   .symbol = "video.slash",
                   .isShown = hasNone});
    all.push_back(
        {.kind = Kind::choice,
         .label = QT_TRANSLATE_NOOP("Inspector", "Position"),
         .choices = labels(kCornerNames),
         .value = [](const EditProject& p) { return indexOf(kCorners, p.cameraSettings.position); },
         .setValue = [](EditProject& p,
                        double index) { p.cameraSettings.position = at(kCorners, index); },
         .isShown = hasCamera});
    addCameraShape(all);
}

std::vector<Control> allControls() {
    std::vector<Control> all;
    addFrame(all);
    addBackground(all);
    addWallpaper(all);
    addCorners(all);
    addCursor(all);
    addKeystrokes(all);
    addCamera(all);
    return all;
}

} // namespace

std::span<const InspectorControl> inspectorControls() {
    static const std::vector<Control> controls = allControls();
    return controls;
}

double snapped(const InspectorControl& slider, double value) {
    const double limited = std::clamp(value, slider.from, slider.to);
    if (!(slider.step > 0)) {
        return limited;
    }
    const double steps = std::round((limited - slider.from) / slider.step);
    return std::min(slider.from + steps * slider.step, slider.to);
}

} // namespace tavi
