#include "ui/Icon.h"

#include "ui/IconTable.h"

#include <QCache>
#include <QMutex>
#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSvgRenderer>
#include <QtQml>

#include <cmath>

namespace tavi {

namespace {

/// A symbol stands this much higher than the letters of its point size.
constexpr double kSymbolScale = 1.2;
constexpr int kKeptDrawings = 256;

QImage drawIcon(const IconEntry& icon, int pixels, const QColor& color) {
    QSvgRenderer drawing(QStringLiteral(":/tavi/icons/%1.svg")
                             .arg(QLatin1String(icon.file.data(), int(icon.file.size()))));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    if (icon.mirrored) {
        painter.setTransform(QTransform(-1, 0, 0, 1, pixels, 0));
    }
    drawing.render(&painter, QRectF(0, 0, pixels, pixels));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

} // namespace

QImage iconImage(const QString& symbol, int pixels, const QColor& color) {
    static QMutex mutex;
    static QCache<QString, QImage> kept(kKeptDrawings);
    const IconEntry* icon = findIcon(symbol.toStdString());
    if (!icon || pixels < 1) {
        return {};
    }
    const QMutexLocker lock(&mutex);
    const QString key = QStringLiteral("%1/%2/%3").arg(symbol).arg(pixels).arg(color.rgba(), 0, 16);
    if (const QImage* found = kept.object(key)) {
        return *found;
    }
    QImage image = drawIcon(*icon, pixels, color);
    kept.insert(key, new QImage(image));
    return image;
}

Icon::Icon(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    const double side = std::round(m_size * kSymbolScale);
    setImplicitSize(side, side);
}

void Icon::setName(const QString& name) {
    if (name == m_name) {
        return;
    }
    if (!name.isEmpty() && !findIcon(name.toStdString())) {
        qmlWarning(this) << "no symbol is called" << name;
    }
    m_name = name;
    refresh();
    emit nameChanged();
}

void Icon::setSize(double size) {
    if (size == m_size) {
        return;
    }
    m_size = size;
    const double side = std::round(m_size * kSymbolScale);
    setImplicitSize(side, side);
    refresh();
    emit sizeChanged();
}

void Icon::setColor(const QColor& color) {
    if (color == m_color) {
        return;
    }
    m_color = color;
    refresh();
    emit colorChanged();
}

void Icon::refresh() {
    m_stale = true;
    update();
}

void Icon::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) {
        refresh();
    }
    QQuickItem::itemChange(change, data);
}

QSGNode* Icon::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    auto* node = static_cast<QSGImageNode*>(old);
    if (node && !m_stale) {
        return node;
    }
    const int pixels = int(std::lround(implicitWidth() * window()->effectiveDevicePixelRatio()));
    const QImage image = iconImage(m_name, pixels, m_color);
    if (image.isNull()) {
        delete node;
        return nullptr;
    }
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
    }
    node->setTexture(window()->createTextureFromImage(image));
    node->setRect(0, 0, implicitWidth(), implicitHeight());
    m_stale = false;
    return node;
}

} // namespace tavi
