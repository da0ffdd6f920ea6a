#include "platform/desktop/CountdownPanels.h"

#include "platform/desktop/CountdownView.h"
#include "platform/desktop/ScreenGeometry.h"
#include "platform/desktop/SurfacePanel.h"

#include <QBitmap>
#include <QPainter>
#include <QQuickItem>
#include <QQuickWindow>

#include <utility>

namespace tavi {

namespace {

constexpr QSize kCardSize(280, 280);
constexpr int kCardRadius = 24;

/// A rounded shape as a mask of whole pixels.
QRegion roundedRegion(QSize size) {
    QBitmap mask(size);
    mask.fill(Qt::color0);
    QPainter painter(&mask);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(QRect(QPoint(), size), kCardRadius, kCardRadius);
    painter.end();
    return QRegion(mask);
}

class Panel final : public OverlayPanel {
public:
    Panel(QQmlEngine& engine, bool isSeeThrough, const Rect& frame, int value)
        : m_isCard(!isSeeThrough) {
        m_window.setFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                          Qt::BypassWindowManagerHint | Qt::WindowTransparentForInput |
                          Qt::WindowDoesNotAcceptFocus);
        m_window.setColor(isSeeThrough ? Qt::transparent : Qt::black);
        m_window.setTitle(QStringLiteral("Tavlin"));
        setFrame(frame);
        if (m_isCard) {
            m_window.setMask(roundedRegion(kCardSize));
        }
        addView(engine, value);
    }

    void setFrame(const Rect& frame) override {
        QRect area = toQtGeometry(frame);
        if (m_isCard) {
            const QPoint middle = area.center();
            area = QRect(QPoint(), kCardSize);
            area.moveCenter(middle);
        }
        m_window.setGeometry(area);
    }

    void setValue(int value) override {
        if (m_view) {
            m_view->setProperty("value", value);
        }
    }

    void orderFront() override {
        m_window.show();
        m_window.raise();
    }

private:
    void addView(QQmlEngine& engine, int value) {
        m_view = makeCountdownView(engine, value);
        if (!m_view) {
            return;
        }
        m_view->setParentItem(m_window.contentItem());
        m_view->setSize(m_window.size());
        QObject::connect(&m_window, &QWindow::widthChanged, m_view.get(),
                         [this](int width) { m_view->setWidth(width); });
        QObject::connect(&m_window, &QWindow::heightChanged, m_view.get(),
                         [this](int height) { m_view->setHeight(height); });
    }

    bool m_isCard;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_view; ///< Goes before its window.
};

} // namespace

CountdownPanels::CountdownPanels(QQmlEngine& engine, OverlaySurfaces* surfaces,
                                 std::function<bool()> isSeeThrough)
    : m_engine(engine),
      m_surfaces(surfaces),
      m_isSeeThrough(std::move(isSeeThrough)) {}

std::unique_ptr<OverlayPanel> CountdownPanels::makePanel(const Rect& frame, int value) {
    if (m_surfaces != nullptr) {
        if (auto panel = SurfacePanel::make(m_engine, *m_surfaces, frame, value)) {
            return panel;
        }
    }
    return std::make_unique<Panel>(m_engine, m_isSeeThrough(), frame, value);
}

} // namespace tavi
