#include "ui/Picture.h"

#include "base/PixelBuffer.h"

#include <QMetaProperty>
#include <QPainter>
#include <QPainterPath>
#include <QQuickWindow>
#include <QSGImageNode>

#include <cmath>

namespace tavi {

namespace {

constexpr auto kHeld = "picture"; ///< The property of a holder.

/// A rectangle whose upper and lower corners are rounded differently.
QPainterPath roundedShape(QSizeF size, double top, double bottom) {
    const double w = size.width();
    const double h = size.height();
    QPainterPath path(QPointF(top, 0));
    path.lineTo(w - top, 0);
    path.arcTo(w - 2 * top, 0, 2 * top, 2 * top, 90, -90);
    path.lineTo(w, h - bottom);
    path.arcTo(w - 2 * bottom, h - 2 * bottom, 2 * bottom, 2 * bottom, 0, -90);
    path.lineTo(bottom, h);
    path.arcTo(0, h - 2 * bottom, 2 * bottom, 2 * bottom, 270, -90);
    path.lineTo(0, top);
    path.arcTo(0, 0, 2 * top, 2 * top, 180, -90);
    return path;
}

} // namespace

QImage imageOf(const QVariant& source) {
    if (source.metaType() != QMetaType::fromType<PixelBufferPtr>()) {
        return source.value<QImage>();
    }
    const auto buffer = source.value<PixelBufferPtr>();
    if (!buffer || buffer->empty()) {
        return {};
    }
    // The image holds the buffer until its last copy is gone.
    auto* owner = new PixelBufferPtr(buffer);
    return {buffer->data(),
            buffer->width(),
            buffer->height(),
            qsizetype(buffer->stride()),
            QImage::Format_ARGB32_Premultiplied,
            [](void* held) { delete static_cast<PixelBufferPtr*>(held); },
            owner};
}

QRectF coveringPart(QSizeF picture, QSizeF area) {
    const QSizeF part = area.scaled(picture, Qt::KeepAspectRatio);
    return {QPointF((picture.width() - part.width()) / 2, (picture.height() - part.height()) / 2),
            part};
}

Picture::Picture(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    connect(this, &Picture::lookChanged, this, [this] {
        m_stale = true;
        update();
    });
}

void Picture::setSource(const QVariant& source) {
    m_source = source;
    m_image = imageOf(source);
    emit sourceChanged();
    emit lookChanged();
}

void Picture::setHolder(QObject* holder) {
    if (m_holder == holder) {
        return;
    }
    if (m_holder) {
        m_holder->disconnect(this);
    }
    m_holder = holder;
    if (holder) {
        const QMetaObject& type = *holder->metaObject();
        connect(holder, type.property(type.indexOfProperty(kHeld)).notifySignal(), this,
                metaObject()->method(metaObject()->indexOfSlot("takeHeldPicture()")));
        takeHeldPicture();
    }
    emit holderChanged();
}

void Picture::takeHeldPicture() {
    setSource(m_holder->property(kHeld));
}

void Picture::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size()) {
        emit lookChanged();
    }
}

void Picture::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) {
        emit lookChanged();
    }
    QQuickItem::itemChange(change, data);
}

QImage Picture::drawn(double ratio) const {
    constexpr double kRounding = 1e-6; // of a size that was divided by the ratio
    const QSize pixels(int(std::ceil(width() * ratio - kRounding)),
                       int(std::ceil(height() * ratio - kRounding)));
    if (m_stretched && m_topRadius == 0 && m_bottomRadius == 0 && m_image.size() == pixels) {
        return m_image; // as live pictures are, thirty times a second
    }
    const QRectF part =
        m_stretched ? QRectF(m_image.rect()) : coveringPart(m_image.size(), QSizeF(pixels));
    // A good filter for the size, then one brush through the shape: edges are smooth.
    const QImage exact = m_image.copy(part.toAlignedRect().intersected(m_image.rect()))
                             .scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QBrush(exact));
    painter.drawPath(roundedShape(pixels, m_topRadius * ratio, m_bottomRadius * ratio));
    return image;
}

QSGNode* Picture::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    auto* node = static_cast<QSGImageNode*>(old);
    const bool blank = m_image.isNull() || width() <= 0 || height() <= 0;
    if (blank) {
        delete node;
        return nullptr;
    }
    if (node && !m_stale) {
        return node;
    }
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
    }
    const QImage image = drawn(window()->effectiveDevicePixelRatio());
    node->setTexture(window()->createTextureFromImage(image));
    node->setRect(0, 0, width(), height());
    m_stale = false;
    return node;
}

} // namespace tavi
