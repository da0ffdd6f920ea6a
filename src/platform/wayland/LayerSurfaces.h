#pragma once

#include "capture/OverlaySurface.h"

namespace tavi {

/// Surfaces of the layer shell, which wlroots' compositors, KWin and others have: above all
/// windows, full-screen ones too, on one display. Where the display isn't known, a square of
/// kCardSide points in the middle of the one that the desktop chooses.
class LayerSurfaces final : public OverlaySurfaces {
public:
    static constexpr int kCardSide = 280;

    std::unique_ptr<OverlaySurface> makeSurface(const Rect& frame, Sized sized) override;
};

} // namespace tavi
