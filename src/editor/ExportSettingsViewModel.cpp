#include "editor/ExportSettingsViewModel.h"

#include "editor/CustomOutput.h"
#include "render/ResolutionOption.h"

#include <algorithm>
#include <array>

namespace tavi {

namespace {

constexpr std::array<std::int64_t, 2> kFrameRates{30, 60};

bool isPreset(Size size) {
    return std::ranges::any_of(kResolutionOptions,
                               [size](ResolutionOption option) { return sizeOf(option) == size; });
}

bool isPreset(std::int64_t fps) {
    return std::ranges::find(kFrameRates, fps) != kFrameRates.end();
}

QString wholePixels(double value) {
    return QString::number(value, 'f', 0);
}

} // namespace

ExportSettingsViewModel::ExportSettingsViewModel(EditorViewModel& editor, QObject* parent)
    : QObject(parent),
      m_editor(editor),
      m_isCustomResolution(!isPreset(settings().resolution)),
      m_isCustomFPS(!isPreset(settings().fps)) {
    connect(&editor, &EditorViewModel::projectChanged, this, &ExportSettingsViewModel::changed);
}

QStringList ExportSettingsViewModel::resolutions() const {
    QStringList labels;
    for (const ResolutionOption option : kResolutionOptions) {
        const std::string_view text = rawValue(option);
        labels.append(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    }
    return labels << tr("Custom");
}

int ExportSettingsViewModel::resolution() const {
    return m_isCustomResolution
               ? static_cast<int>(kResolutionOptions.size())
               : static_cast<int>(resolutionOptionFor(settings().resolution.width));
}

QString ExportSettingsViewModel::customWidth() const {
    return wholePixels(settings().resolution.width);
}

QString ExportSettingsViewModel::customHeight() const {
    return wholePixels(settings().resolution.height);
}

QStringList ExportSettingsViewModel::frameRates() const {
    QStringList labels;
    for (const std::int64_t fps : kFrameRates) {
        labels.append(tr("%1 fps").arg(fps));
    }
    return labels << tr("Custom");
}

int ExportSettingsViewModel::frameRate() const {
    const auto found = std::ranges::find(kFrameRates, settings().fps);
    return m_isCustomFPS ? static_cast<int>(kFrameRates.size())
                         : static_cast<int>(found - kFrameRates.begin());
}

QString ExportSettingsViewModel::customFPSText() const {
    return QString::number(settings().fps);
}

void ExportSettingsViewModel::chooseResolution(int index) {
    const auto option = static_cast<std::size_t>(index);
    m_isCustomResolution = option >= kResolutionOptions.size();
    if (m_isCustomResolution) {
        emit changed();
    } else {
        setResolution(sizeOf(kResolutionOptions[option]));
    }
}

void ExportSettingsViewModel::chooseFrameRate(int index) {
    const auto rate = static_cast<std::size_t>(index);
    m_isCustomFPS = rate >= kFrameRates.size();
    if (m_isCustomFPS) {
        emit changed();
    } else {
        setFPS(kFrameRates[rate]);
    }
}

void ExportSettingsViewModel::commitWidth(const QString& text) {
    setResolution(customSizeForWidth(text.toStdString(), m_editor.videoSize()));
}

void ExportSettingsViewModel::commitHeight(const QString& text) {
    setResolution(customSizeForHeight(text.toStdString(), m_editor.videoSize()));
}

void ExportSettingsViewModel::commitFPS(const QString& text) {
    if (const auto fps = customFrameRate(text.toStdString())) {
        setFPS(*fps);
    }
}

void ExportSettingsViewModel::setResolution(std::optional<Size> size) {
    if (size) {
        m_editor.changeProject(
            [size](EditProject& project) { project.outputSettings.resolution = *size; });
    }
}

void ExportSettingsViewModel::setFPS(std::int64_t fps) {
    m_editor.changeProject([fps](EditProject& project) { project.outputSettings.fps = fps; });
}

} // namespace tavi
