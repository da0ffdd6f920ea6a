#pragma once

#include "capture/OverlayPanel.h"
#include "capture/OverlaySurface.h"

#include <memory>

class QQmlEngine;

namespace tavi {

/// The countdown's panel on a surface of the desktop. Each number is drawn once, in a window that
/// is never shown. It stays on its display, since nobody tells where a window is there.
class SurfacePanel final : public OverlayPanel {
public:
    /// Null where the desktop has no such surfaces.
    static std::unique_ptr<SurfacePanel> make(QQmlEngine& engine, OverlaySurfaces& surfaces,
                                              const Rect& frame, int value);
    ~SurfacePanel() override;

    void setFrame(const Rect&) override {}
    void setValue(int value) override;
    void orderFront() override;

private:
    class Drawing;

    SurfacePanel(QQmlEngine& engine, int value);

    std::unique_ptr<Drawing> m_drawing;
    std::unique_ptr<OverlaySurface> m_surface; ///< Goes first: it tells the drawing its size.
};

} // namespace tavi
