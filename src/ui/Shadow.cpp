#include "ui/Shadow.h"

#include <QImage>
#include <QPainter>
#include <QQuickWindow>
#include <QSGNinePatchNode>

#include <algorithm>
#include <cmath>
#include <vector>

namespace tavi {

namespace {

/// Coverage of one line, blurred by a window that slides along it.
void blurLine(const std::vector<float>& in, std::vector<float>& out, int reach) {
    const int count = int(in.size());
    float sum = 0;
    for (int i = -reach; i < count + reach; ++i) {
        const int entering = i + reach;
        const int leaving = i - reach - 1;
        if (entering >= 0 && entering < count) {
            sum += in[size_t(entering)];
        }
        if (leaving >= 0 && leaving < count) {
            sum -= in[size_t(leaving)];
        }
        if (i >= 0 && i < count) {
            out[size_t(i)] = sum / float(2 * reach + 1);
        }
    }
}

/// Three boxes stand for a Gaussian of the same variance closer than 3 % of its height.
void blurCoverage(std::vector<float>& pixels, int side, double deviation) {
    const int reach =
        std::max(1, int(std::lround((std::sqrt(4 * deviation * deviation + 1) - 1) / 2)));
    std::vector<float> line(static_cast<size_t>(side)), next(line);
    for (const bool down : {false, true}) {
        for (int n = 0; n < side; ++n) {
            const auto at = [&](int i) -> float& {
                const int index = down ? i * side + n : n * side + i;
                return pixels[size_t(index)];
            };
            for (int i = 0; i < side; ++i) {
                line[size_t(i)] = at(i);
            }
            for (int pass = 0; pass < 3; ++pass) {
                blurLine(line, next, reach);
                line.swap(next);
            }
            for (int i = 0; i < side; ++i) {
                at(i) = line[size_t(i)];
            }
        }
    }
}

/// A blurred rounded square: `margin` of soft edge around `core`; pixels.
QImage shadowImage(int margin, int core, double corner, const QColor& color) {
    const int side = core + 2 * margin;
    QImage shape(side, side, QImage::Format_Alpha8);
    shape.fill(0);
    QPainter painter(&shape);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(margin, margin, core, core), corner, corner);
    painter.end();
    std::vector<float> coverage(size_t(side) * size_t(side));
    for (int y = 0; y < side; ++y) {
        std::copy_n(shape.constScanLine(y), side, coverage.begin() + std::ptrdiff_t(y) * side);
    }
    blurCoverage(coverage, side, margin / 2.0);
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < side; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const float alpha = coverage[size_t(y) * size_t(side) + size_t(x)] * color.alphaF();
            row[x] = qPremultiply(
                qRgba(color.red(), color.green(), color.blue(), int(std::lround(alpha))));
        }
    }
    return image;
}

} // namespace

Shadow::Shadow(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    connect(this, &Shadow::lookChanged, this, [this] {
        m_stale = true;
        update();
    });
}

void Shadow::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    update();
}

void Shadow::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) {
        emit lookChanged();
    }
    QQuickItem::itemChange(change, data);
}

QSGNode* Shadow::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    auto* node = static_cast<QSGNinePatchNode*>(old);
    const double ratio = window()->effectiveDevicePixelRatio();
    // The patches' corners hold the soft edge and whatever it mixes with.
    const double border = m_radius * 2 + m_cornerRadius;
    if (!node) {
        node = window()->createNinePatchNode();
        m_stale = true;
    }
    if (m_stale) {
        const int margin = int(std::lround(m_radius * ratio));
        const int core = int(std::lround((border - m_radius) * ratio)) * 2 + 1;
        node->setTexture(window()->createTextureFromImage(
            shadowImage(margin, core, m_cornerRadius * ratio, m_color)));
        m_stale = false;
    }
    node->setBounds(
        boundingRect().adjusted(-m_radius, m_offsetY - m_radius, m_radius, m_offsetY + m_radius));
    node->setDevicePixelRatio(ratio);
    node->setPadding(border, border, border, border);
    node->update();
    return node;
}

} // namespace tavi
