#include "platform/desktop/ScreenGeometry.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace tavi {

namespace {

/// Qt leaves a screen's origin in pixels and scales its size.
QRectF pixelsOf(const QScreen& screen) {
    return {screen.geometry().topLeft(),
            QSizeF(screen.geometry().size()) * screen.devicePixelRatio()};
}

/// The height of all screens together, as the window system counts it.
double globalHeight() {
    double height = 0;
    for (const QScreen* screen : QGuiApplication::screens()) {
        height = std::max(height, pixelsOf(*screen).bottom());
    }
    return height;
}

const QScreen* screenAt(QPointF pixel) {
    const auto screens = QGuiApplication::screens();
    const auto found = std::find_if(screens.begin(), screens.end(), [pixel](const QScreen* s) {
        return pixelsOf(*s).contains(pixel);
    });
    return found == screens.end() ? QGuiApplication::primaryScreen() : *found;
}

} // namespace

QRect toQtGeometry(const Rect& area) {
    const QRectF pixels(area.x, globalHeight() - area.y - area.height, area.width, area.height);
    const QScreen* screen = screenAt(pixels.center());
    if (screen == nullptr) {
        return pixels.toRect();
    }
    const double scale = screen->devicePixelRatio();
    const QPointF origin = screen->geometry().topLeft();
    return QRectF(origin + (pixels.topLeft() - origin) / scale, pixels.size() / scale).toRect();
}

} // namespace tavi
