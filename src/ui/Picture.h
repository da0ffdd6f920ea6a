#pragma once

#include <QImage>
#include <QPointer>
#include <QQuickItem>
#include <QVariant>

namespace tavi {

/// A picture that fills its item: scaled to cover it, cut at the edges, with
/// rounded corners.
///
/// The picture is brought to the item's exact pixels once, on the processor, so
/// that scrolling copies pixels instead of scaling them; the corners are cut in
/// its alpha, since a clip knows rectangles only.
/// Thread: main; the node is made on the render thread while the main thread waits.
class Picture : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// A QImage or a PixelBufferPtr; anything else is no picture.
    Q_PROPERTY(QVariant source READ source WRITE setSource NOTIFY sourceChanged)
    /// An object whose property `picture` is the source from now on, whenever it changes. For live
    /// pictures: a binding to them leaves each in the heap of QML until that is tidied up, and the
    /// heap doesn't know how large they are.
    Q_PROPERTY(QObject* holder READ holder WRITE setHolder NOTIFY holderChanged)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY sourceChanged)
    /// Corners in points: the upper two and the lower two.
    Q_PROPERTY(double topRadius MEMBER m_topRadius NOTIFY lookChanged)
    Q_PROPERTY(double bottomRadius MEMBER m_bottomRadius NOTIFY lookChanged)
    /// Stretched to the item instead of cut at its edges.
    Q_PROPERTY(bool stretched MEMBER m_stretched NOTIFY lookChanged)

public:
    explicit Picture(QQuickItem* parent = nullptr);

    QVariant source() const { return m_source; }
    void setSource(const QVariant& source);
    QObject* holder() const { return m_holder; }
    void setHolder(QObject* holder);
    bool isEmpty() const { return m_image.isNull(); }

signals:
    void sourceChanged();
    void holderChanged();
    void lookChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private slots:
    void takeHeldPicture();

private:
    QImage drawn(double ratio) const;

    QVariant m_source;
    QPointer<QObject> m_holder;
    QImage m_image;
    double m_topRadius = 0;
    double m_bottomRadius = 0;
    bool m_stretched = false;
    bool m_stale = true;
};

/// The picture in a QImage or a PixelBufferPtr (shared, not copied); null for
/// anything else.
QImage imageOf(const QVariant& source);

/// The part of a picture of size `picture` that covers `area` without distortion,
/// from its middle.
QRectF coveringPart(QSizeF picture, QSizeF area);

} // namespace tavi
