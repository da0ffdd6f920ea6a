#include "TestPictures.h"

#include <QPainter>

namespace tavi::test {

namespace {

void paintWindow(QPainter& painter, const QRectF& frame, int number) {
    painter.setBrush(QColor(250, 250, 252));
    painter.drawRoundedRect(frame, 8, 8);
    painter.setBrush(QColor(225, 226, 230));
    painter.drawRoundedRect(QRectF(frame.topLeft(), QSizeF(frame.width(), 24)), 8, 8);
    painter.setBrush(QColor::fromHsv((number * 67) % 360, 120, 210));
    painter.drawRoundedRect(QRectF(frame.x() + 16, frame.y() + 40, 90, frame.height() - 56), 4, 4);
    painter.setBrush(QColor(205, 207, 213));
    for (int line = 0; line * 18 + 60 < frame.height(); ++line) {
        const double width =
            (frame.width() - 150) * (0.55 + 0.45 * ((line * 5 + number) % 7) / 7.0);
        painter.drawRoundedRect(QRectF(frame.x() + 124, frame.y() + 42 + line * 18, width, 8), 4,
                                4);
    }
}

} // namespace

QImage TestPictures::screen(int number) const {
    QImage image(640, 360, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 640, 360);
    sky.setColorAt(0, QColor::fromHsv((number * 47 + 200) % 360, 140, 150));
    sky.setColorAt(1, QColor::fromHsv((number * 47 + 260) % 360, 180, 70));
    painter.fillRect(image.rect(), sky);
    painter.setPen(Qt::NoPen);
    paintWindow(painter, QRectF(70 + (number * 31) % 60, 50 + (number * 17) % 30, 440, 250),
                number);
    painter.end();
    return image;
}

} // namespace tavi::test
