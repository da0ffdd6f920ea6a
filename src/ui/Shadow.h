#pragma once

#include <QColor>
#include <QQuickItem>

namespace tavi {

/// The soft shadow of a rounded rectangle that lies over this item's area.
///
/// Drawn on the processor once per change of look, stretched as nine patches,
/// so it costs next to nothing at every size and on every renderer. Lengths in
/// points; `radius` is the blur's reach (twice the standard deviation).
/// Thread: main.
class Shadow : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY lookChanged)
    Q_PROPERTY(double cornerRadius MEMBER m_cornerRadius NOTIFY lookChanged)
    Q_PROPERTY(double offsetY MEMBER m_offsetY NOTIFY lookChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY lookChanged)

public:
    explicit Shadow(QQuickItem* parent = nullptr);

signals:
    void lookChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    double m_radius = 20;
    double m_cornerRadius = 10;
    double m_offsetY = 0;
    QColor m_color = Qt::black;
    bool m_stale = true;
};

} // namespace tavi
