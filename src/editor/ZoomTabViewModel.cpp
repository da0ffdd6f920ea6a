#include "editor/ZoomTabViewModel.h"

#include "editor/EditorText.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tavi {

namespace {

constexpr double kTenth = 0.1;
constexpr double kFastest = 0.1; ///< Seconds.
constexpr double kSlowest = 2.0;

double onTenths(double value, double from, double to) {
    return std::clamp(std::round(value / kTenth) / 10, from, to);
}

/// The names of RawValues<EasingType>.
constexpr std::array kEasings{QT_TRANSLATE_NOOP("tavi::ZoomTabViewModel", "Linear"),
                              QT_TRANSLATE_NOOP("tavi::ZoomTabViewModel", "Ease In"),
                              QT_TRANSLATE_NOOP("tavi::ZoomTabViewModel", "Ease Out"),
                              QT_TRANSLATE_NOOP("tavi::ZoomTabViewModel", "Ease In-Out"),
                              QT_TRANSLATE_NOOP("tavi::ZoomTabViewModel", "Spring")};
static_assert(std::ranges::equal(kEasings, RawValues<EasingType>::names, {},
                                 [](const char* text) { return std::string_view(text); }));

QString wholePixels(double value) {
    return QString::number(value, 'f', 0);
}

} // namespace

ZoomTabViewModel::ZoomTabViewModel(EditorViewModel& editor, QObject* parent)
    : QObject(parent),
      m_editor(editor) {
    connect(&editor, &EditorViewModel::projectChanged, this, &ZoomTabViewModel::keyframeChanged);
    connect(&editor, &EditorViewModel::selectedKeyframeIDChanged, this,
            &ZoomTabViewModel::keyframeChanged);
    connect(&editor, &EditorViewModel::autoZoomSettingsChanged, this,
            &ZoomTabViewModel::intensityChanged);
    connect(&editor.autoZoomViewModel(), &AutoZoomViewModel::generatedCountChanged, this,
            &ZoomTabViewModel::resultChanged);
}

const ZoomKeyframe* ZoomTabViewModel::selected() const {
    const auto& keyframes = m_editor.project().keyframes;
    const auto found =
        std::ranges::find(keyframes, m_editor.selectedKeyframeID(), &ZoomKeyframe::id);
    return found == keyframes.end() ? nullptr : &*found;
}

double ZoomTabViewModel::intensity() const {
    return m_editor.autoZoomSettings().aggressiveness;
}

void ZoomTabViewModel::setIntensity(double intensity) {
    AutoZoomSettings settings = m_editor.autoZoomSettings();
    settings.aggressiveness = onTenths(intensity, 0, 1);
    m_editor.setAutoZoomSettings(settings);
}

QString ZoomTabViewModel::intensityText() const {
    return QString::number(100 * intensity(), 'f', 0) + "%";
}

QString ZoomTabViewModel::resultText() const {
    const int count = m_editor.autoZoomViewModel().generatedCount();
    return count >= 1 ? tr("%n keyframes generated", nullptr, count) : QString();
}

QString ZoomTabViewModel::title() const {
    const ZoomKeyframe* keyframe = selected();
    return keyframe ? tr("KEYFRAME %1").arg(keyframe - m_editor.project().keyframes.data() + 1)
                    : QString();
}

QString ZoomTabViewModel::startText() const {
    return selected() ? QString::fromStdString(timeText(selected()->timestamp)) : QString();
}

QString ZoomTabViewModel::endText() const {
    return selected() ? QString::fromStdString(timeText(selected()->endTime)) : QString();
}

double ZoomTabViewModel::speed() const {
    return selected() ? selected()->transitionDuration : 0;
}

void ZoomTabViewModel::setSpeed(double seconds) {
    if (selected()) {
        ZoomKeyframe keyframe = *selected();
        keyframe.transitionDuration = onTenths(seconds, kFastest, kSlowest);
        m_editor.updateKeyframe(keyframe);
    }
}

QString ZoomTabViewModel::speedText() const {
    return QString::number(speed(), 'f', 1) + "s";
}

int ZoomTabViewModel::easing() const {
    return selected() ? static_cast<int>(selected()->easingType) : 0;
}

void ZoomTabViewModel::setEasing(int index) {
    if (selected() && index >= 0 && index < easings().size()) {
        ZoomKeyframe keyframe = *selected();
        keyframe.easingType = static_cast<EasingType>(index);
        m_editor.updateKeyframe(keyframe);
    }
}

QStringList ZoomTabViewModel::easings() const {
    QStringList list;
    for (const char* name : kEasings) {
        list.append(tr(name));
    }
    return list;
}

QStringList ZoomTabViewModel::details() const {
    if (!selected()) {
        return {};
    }
    const Rect& rect = selected()->rect;
    return {wholePixels(rect.width), wholePixels(rect.height), wholePixels(rect.x),
            wholePixels(rect.y)};
}

void ZoomTabViewModel::deleteKeyframe() {
    if (selected()) {
        m_editor.deleteKeyframe(*selected());
    }
}

} // namespace tavi
