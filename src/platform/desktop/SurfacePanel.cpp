#include "platform/desktop/SurfacePanel.h"

#include "platform/desktop/CountdownView.h"

#include <QImage>
#include <QQuickWindow>

#include <cstring>

namespace tavi {

namespace {

PixelBuffer bufferOf(const QImage& image) {
    PixelBuffer buffer(image.width(), image.height());
    const std::size_t bytes = static_cast<std::size_t>(image.width()) * PixelBuffer::kBytesPerPixel;
    for (int y = 0; y < image.height(); ++y) {
        std::memcpy(buffer.row(y), image.constScanLine(y), bytes);
    }
    return buffer;
}

} // namespace

/// Draws numbers of a size that is told later.
class SurfacePanel::Drawing {
public:
    Drawing(QQmlEngine& engine, int value) : m_engine(engine), m_value(value) {
        m_window.setFlags(Qt::ToolTip);
        m_window.setColor(Qt::transparent);
    }

    void setSize(Size points, int scale) {
        m_window.resize(static_cast<int>(points.width), static_cast<int>(points.height));
        m_scale = scale;
    }
    bool isSized() const { return m_window.width() > 0 && m_scale > 0; }
    void setValue(int value) { m_value = value; }

    /// A new view for each number: one that changes would be caught between two.
    PixelBuffer draw() {
        const auto view = makeCountdownView(m_engine, m_value);
        if (!view) {
            return {};
        }
        m_window.create();
        view->setParentItem(m_window.contentItem());
        view->setSize(m_window.size());
        const QImage image = m_window.grabWindow().scaled(
            m_window.size() * m_scale, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        return bufferOf(image.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    }

private:
    QQmlEngine& m_engine;
    int m_value;
    int m_scale = 0; ///< 0 until the size is told.
    QQuickWindow m_window;
};

SurfacePanel::SurfacePanel(QQmlEngine& engine, int value)
    : m_drawing(std::make_unique<Drawing>(engine, value)) {}

SurfacePanel::~SurfacePanel() = default;

std::unique_ptr<SurfacePanel> SurfacePanel::make(QQmlEngine& engine, OverlaySurfaces& surfaces,
                                                 const Rect& frame, int value) {
    std::unique_ptr<SurfacePanel> panel(new SurfacePanel(engine, value));
    panel->m_surface = surfaces.makeSurface(frame, [self = panel.get()](Size points, int scale) {
        self->m_drawing->setSize(points, scale);
        self->orderFront();
    });
    return panel->m_surface ? std::move(panel) : nullptr;
}

void SurfacePanel::setValue(int value) {
    m_drawing->setValue(value);
    orderFront();
}

void SurfacePanel::orderFront() {
    if (m_surface && m_drawing->isSized()) {
        m_surface->show(m_drawing->draw());
    }
}

} // namespace tavi
