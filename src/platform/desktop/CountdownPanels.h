#pragma once

#include "capture/OverlayPanel.h"

#include <functional>

class QQmlEngine;

namespace tavi {

/// The countdown as windows that no window manager touches: without frame, above all windows, on
/// all desktops, taking neither focus nor clicks.
///
/// Where windows can be see-through, a panel covers its frame and darkens what is below. Where no
/// compositor runs, that would hide the screen; the panel is then a small dark card in the middle
/// of the frame.
/// Thread: main.
class CountdownPanels final : public OverlayPanels {
public:
    /// `engine` knows the view's module and outlives the panels.
    CountdownPanels(QQmlEngine& engine, std::function<bool()> isSeeThrough);

    std::unique_ptr<OverlayPanel> makePanel(const Rect& frame, int value) override;

private:
    QQmlEngine& m_engine;
    std::function<bool()> m_isSeeThrough;
};

} // namespace tavi
