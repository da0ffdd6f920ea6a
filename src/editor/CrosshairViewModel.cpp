#include "editor/CrosshairViewModel.h"

#include "editor/KeyframeEdits.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavi {

namespace {

constexpr double kStep = 0.01; ///< Shares of the video: fine enough to meet a button.
constexpr double kBigStep = 0.1;

QString percent(double share) {
    return QString::number(std::lround(share * 100));
}

} // namespace

CrosshairViewModel::CrosshairViewModel(EditorViewModel& editor, std::function<void(QPointF)> add,
                                       QObject* parent)
    : QObject(parent),
      m_editor(editor),
      m_add(std::move(add)),
      m_couldPoint(canPoint()) {
    using Editor = EditorViewModel;
    for (const auto told : {&Editor::projectChanged, &Editor::currentTimeChanged,
                            &Editor::selectedKeyframeIDChanged}) {
        connect(&editor, told, this, &CrosshairViewModel::editorChanged);
    }
}

bool CrosshairViewModel::canPoint() const {
    const auto& selected = m_editor.selectedKeyframeID();
    return selected && KeyframeEdits::takesWaypoint(m_editor.project().keyframes, *selected,
                                                    m_editor.currentTime());
}

QString CrosshairViewModel::hint() const {
    if (m_isPointing) {
        return tr("%1 % from the left, %2 % from the top. Arrow keys move, with Shift further; "
                  "Return points the zoom there, Escape ends")
            .arg(percent(m_place.x()), percent(m_place.y()));
    }
    return canPoint() ? tr("Return points the selected zoom at a place")
                      : tr("Select a keyframe at the playhead to point its zoom at a place");
}

void CrosshairViewModel::press() {
    if (m_isPointing) {
        m_add(m_place);
    } else if (canPoint()) {
        m_isPointing = true;
        emit changed();
    }
}

void CrosshairViewModel::move(int right, int down, bool isBig) {
    if (!m_isPointing) {
        return;
    }
    const double step = isBig ? kBigStep : kStep;
    m_place = {std::clamp(m_place.x() + right * step, 0.0, 1.0),
               std::clamp(m_place.y() + down * step, 0.0, 1.0)};
    emit changed();
}

void CrosshairViewModel::end() {
    if (m_isPointing) {
        m_isPointing = false;
        emit changed();
    }
}

void CrosshairViewModel::editorChanged() {
    const bool can = canPoint();
    if (can != std::exchange(m_couldPoint, can)) {
        m_isPointing = m_isPointing && can;
        emit changed();
    }
}

} // namespace tavi
