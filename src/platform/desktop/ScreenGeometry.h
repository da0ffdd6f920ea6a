#pragma once

#include "base/Geometry.h"

#include <QRect>

namespace tavi {

/// An area of the global bottom-left-origin space (points are the display's pixels) in Qt's
/// space: from the top left, scaled as the screen is that holds the area's middle.
/// Thread: main.
QRect toQtGeometry(const Rect& area);

} // namespace tavi
