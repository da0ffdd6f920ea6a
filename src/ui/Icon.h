#pragma once

#include <QColor>
#include <QImage>
#include <QQuickItem>

namespace tavi {

/// A symbol of the program in one colour, sharp at every scale of the screen.
///
/// `size` is that of the text which the symbol accompanies, in points; the
/// drawing is a little larger, as symbols of a typeface are. A name that the
/// table doesn't have is told as a warning and shows nothing.
/// Thread: main; the picture node is made on the render thread while the main
/// thread waits.
class Icon : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(double size READ size WRITE setSize NOTIFY sizeChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit Icon(QQuickItem* parent = nullptr);

    QString name() const { return m_name; }
    void setName(const QString& name);
    double size() const { return m_size; }
    void setSize(double size);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);

signals:
    void nameChanged();
    void sizeChanged();
    void colorChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    void refresh();

    QString m_name;
    double m_size = 13;
    QColor m_color = Qt::white;
    bool m_stale = true;
};

/// The drawing of a symbol, `pixels` wide and high, in one colour; a null image
/// for a symbol that the table doesn't have. Drawings that were made lately are kept.
/// Thread: main or render, never both at once.
QImage iconImage(const QString& symbol, int pixels, const QColor& color);

} // namespace tavi
