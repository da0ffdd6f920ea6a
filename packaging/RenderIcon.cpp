#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

/// tavi-render-icon SVG PIXELS PNG: draws a square picture.
int main(int argc, char** argv) {
    if (argc != 4) {
        std::fputs("usage: tavi-render-icon SVG PIXELS PNG\n", stderr);
        return 2;
    }
    const QString target = QString::fromLocal8Bit(argv[3]);
    const int pixels = QByteArray(argv[2]).toInt();
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    QImage picture(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter);
    painter.end();
    QDir().mkpath(QFileInfo(target).path());
    return drawing.isValid() && picture.save(target) ? 0 : 1;
}
