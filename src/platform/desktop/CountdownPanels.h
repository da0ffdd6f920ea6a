#pragma once

#include "capture/OverlayPanel.h"
#include "capture/OverlaySurface.h"

#include <functional>

class QQmlEngine;

namespace tavi {

/// The countdown as windows that no window manager touches: without frame, above all windows, on
/// all desktops, taking neither focus nor clicks.
///
/// Where the desktop has surfaces for such things, the panel is one. Else, where windows can be
/// see-through, a panel covers its frame and darkens what is below. Where no
/// compositor runs, that would hide the screen; the panel is then a small dark card in the middle
/// of the frame.
/// Thread: main.
class CountdownPanels final : public OverlayPanels {
public:
    /// `engine` knows the view's module and outlives the panels, as does `surfaces`, which may be
    /// null.
    CountdownPanels(QQmlEngine& engine, OverlaySurfaces* surfaces,
                    std::function<bool()> isSeeThrough);

    std::unique_ptr<OverlayPanel> makePanel(const Rect& frame, int value) override;

private:
    QQmlEngine& m_engine;
    OverlaySurfaces* m_surfaces;
    std::function<bool()> m_isSeeThrough;
};

} // namespace tavi
