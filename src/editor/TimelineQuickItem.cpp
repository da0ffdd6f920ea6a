#include "editor/TimelineQuickItem.h"

#include "editor/TrimEdits.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>

void qml_register_types_Tavi_Editor(); // made by the build

namespace tavi {

namespace {

using Geometry = TimelineGeometry;
using Kind = TimelineHit::Kind;

constexpr double kUpperTop = Geometry::kRulerHeight + Geometry::kSeparatorHeight;
constexpr double kLowerTop = kUpperTop + Geometry::kUpperLaneHeight;
constexpr double kUpper = Geometry::kUpperLaneHeight;
constexpr double kLower = Geometry::kLowerLaneHeight;
constexpr double kHatchStep = 6;

QColor at(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

QRectF inLane(const TimelineSpan& span, double height) {
    return {span.x, 0, span.width, height};
}

void hatch(QPainter& painter, const QRectF& rect, const QColor& color) {
    painter.save();
    painter.setClipRect(rect);
    painter.setPen(QPen(color, 1));
    for (double x = -rect.height(); x < rect.width(); x += kHatchStep) {
        painter.drawLine(QPointF(rect.left() + x, rect.bottom()),
                         QPointF(rect.left() + x + rect.height(), rect.top()));
    }
    painter.restore();
}

/// A stroke that lies inside of `rect`.
void strokeInside(QPainter& painter, const QRectF& rect, double radius, const QPen& pen) {
    const double inset = pen.widthF() / 2;
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
}

} // namespace

TimelineQuickItem::TimelineQuickItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &TimelineQuickItem::lookChanged, this, [this] { update(); });
}

void TimelineQuickItem::setTimeline(TimelineViewModel* timeline) {
    if (m_timeline == timeline) {
        return;
    }
    if (m_timeline) {
        disconnect(m_timeline, nullptr, this, nullptr);
    }
    m_timeline = timeline;
    if (m_timeline) {
        connect(m_timeline, &TimelineViewModel::marksChanged, this, [this] {
            if (m_layer != Playhead) { // which is moved, not painted
                update();
            }
        });
        connect(m_timeline, &QObject::destroyed, this, [this] { m_timeline = nullptr; });
    }
    update();
    emit timelineChanged();
}

void TimelineQuickItem::paint(QPainter* painter) {
    if (!m_timeline || !m_timeline->hasContent()) {
        return;
    }
    painter->setRenderHint(QPainter::Antialiasing);
    if (m_layer == Playhead) {
        paintPlayhead(*painter);
        return;
    }
    painter->translate(Geometry::kLanePadding, 0);
    const auto& keyframes = m_timeline->model().keyframes;
    if (m_layer == Ground) {
        paintRuler(*painter);
    }
    painter->translate(0, kUpperTop);
    if (m_layer == Handles) {
        paintTrim(*painter);
    } else if (m_layer == Ground) {
        paintTrim(*painter);
        painter->translate(0, kLowerTop - kUpperTop);
        for (const ZoomKeyframe& keyframe : keyframes) {
            paintCurve(*painter, keyframe);
        }
    } else {
        for (const ZoomKeyframe& keyframe : keyframes) {
            paintRamps(*painter, keyframe);
        }
        for (const ZoomKeyframe& keyframe : keyframes) {
            paintBody(*painter, keyframe);
        }
        for (const ZoomKeyframe& keyframe : keyframes) {
            paintEdges(*painter, keyframe);
        }
        painter->translate(0, kLowerTop - kUpperTop);
        for (const ZoomKeyframe& keyframe : keyframes) {
            paintCurvePoints(*painter, keyframe);
        }
    }
}

void TimelineQuickItem::paintRuler(QPainter& painter) const {
    constexpr double kMajor = 0.3;
    constexpr double kMinor = 0.1;
    QFont font(m_family);
    font.setPixelSize(9);
    font.setWeight(QFont::Medium);
    painter.setFont(font);
    for (const RulerTick& tick : rulerTicks(m_timeline->model().geometry)) {
        const double height = tick.isMajor ? kMajorTickHeight : kMinorTickHeight;
        painter.fillRect(QRectF(tick.x, Geometry::kRulerHeight - height, 1, height),
                         at(Qt::white, tick.isMajor ? kMajor : kMinor));
        painter.setPen(m_secondaryText);
        painter.drawText(QRectF(tick.x + 4, 0, 60, Geometry::kRulerHeight - 4),
                         Qt::AlignLeft | Qt::AlignVCenter, QString::fromStdString(tick.label));
    }
}

/// Ground: what is left out and cut. Handles: the two handles.
void TimelineQuickItem::paintTrim(QPainter& painter) const {
    const TimelineModel model = m_timeline->model();
    const TrimState& trim = model.trimState;
    if (m_layer == Handles) {
        constexpr double kNoticeable = 0.01; // seconds
        const TimelineGestures& gestures = m_timeline->gestures();
        paintTrimHandle(painter, model.geometry.x(trim.inPoint), gestures.isDraggingTrimIn(),
                        trim.inPoint > kNoticeable);
        paintTrimHandle(painter, model.geometry.x(TrimEdits::end(trim, model.geometry.duration)),
                        gestures.isDraggingTrimOut(), trim.outPoint.has_value());
        return;
    }
    for (const TimelineSpan& span : TimelineMarks::dimAreas(model.geometry, trim)) {
        painter.fillRect(inLane(span, kUpper), at(m_background, 0.7));
    }
    for (const TimeRange& cut : trim.cutSegments) {
        paintCut(painter, TimelineMarks::cutSpan(model.geometry, cut));
    }
    paintPendingCut(painter);
}

void TimelineQuickItem::paintCut(QPainter& painter, const TimelineSpan& span) const {
    const QRectF rect = inLane(span, kUpper);
    painter.fillRect(rect, at(m_danger, 0.1));
    hatch(painter, rect, at(m_danger, 0.15));
    strokeInside(painter, rect, 2, QPen(at(m_danger, 0.25), 1));
}

void TimelineQuickItem::paintPendingCut(QPainter& painter) const {
    const auto& marker = m_timeline->editor().cutStartMarker();
    if (!marker) {
        return;
    }
    const PendingCut cut = TimelineMarks::pendingCut(m_timeline->model().geometry, *marker,
                                                     m_timeline->editor().currentTime());
    const QRectF rect = inLane(cut.span, kUpper);
    painter.fillRect(rect, at(m_danger, 0.18));
    QPen dashed(at(m_danger, 0.5), 1.5);
    dashed.setDashPattern({6 / 1.5, 4 / 1.5}); // in widths of the pen
    strokeInside(painter, rect, 0, dashed);
    painter.fillRect(QRectF(cut.markerX - 0.75, 0, 1.5, kUpper), at(m_danger, 0.7));
}

void TimelineQuickItem::paintRamps(QPainter& painter, const ZoomKeyframe& keyframe) const {
    const KeyframeMarks marks =
        TimelineMarks::keyframeMarks(m_timeline->model().geometry, keyframe);
    for (const TimelineSpan& ramp : {marks.entry, marks.exit}) {
        painter.fillRect(inLane(ramp, kUpper), at(m_accent, 0.06));
        hatch(painter, inLane(ramp, kUpper), at(m_accent, 0.15));
    }
}

void TimelineQuickItem::paintBody(QPainter& painter, const ZoomKeyframe& keyframe) const {
    constexpr double kRadius = 3;
    const KeyframeMarks marks =
        TimelineMarks::keyframeMarks(m_timeline->model().geometry, keyframe);
    const bool isSelected = m_timeline->editor().selectedKeyframeID() == keyframe.id;
    const QRectF body = inLane(marks.body, kUpper);
    if (isSelected) { // a soft glow around it
        for (int i = 6; i >= 1; --i) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(at(m_accent, 0.02));
            painter.drawRoundedRect(body.adjusted(-i, -i, i, i), kRadius + i, kRadius + i);
        }
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(at(m_accent, isSelected ? 0.35 : 0.2));
    painter.drawRoundedRect(body, kRadius, kRadius);
    strokeInside(painter, body, kRadius,
                 QPen(at(m_accent, isSelected ? 0.8 : 0.3), isSelected ? 1.5 : 1.0));
}

void TimelineQuickItem::paintEdges(QPainter& painter, const ZoomKeyframe& keyframe) const {
    const auto dragged = m_timeline->gestures().draggingEdge();
    const TimelineGeometry geometry = m_timeline->model().geometry;
    paintEdge(painter, geometry.x(keyframe.timestamp),
              dragged == TimelineHit{Kind::leftEdge, keyframe.id, {}});
    paintEdge(painter, geometry.x(keyframe.endTime),
              dragged == TimelineHit{Kind::rightEdge, keyframe.id, {}});
}

void TimelineQuickItem::paintEdge(QPainter& painter, double x, bool isDragged) const {
    const double height = TimelineMarks::edgeHandleHeight(kUpper);
    painter.setPen(Qt::NoPen);
    painter.setBrush(at(m_accent, isDragged ? 1.0 : 0.5));
    painter.drawRoundedRect(QRectF(x - Geometry::kEdgeHandleWidth / 2, (kUpper - height) / 2,
                                   Geometry::kEdgeHandleWidth, height),
                            1, 1);
}

void TimelineQuickItem::paintCurve(QPainter& painter, const ZoomKeyframe& keyframe) const {
    const TimelineModel model = m_timeline->model();
    const TimelineSpan span = TimelineMarks::curveSpan(model.geometry, keyframe);
    painter.setPen(Qt::NoPen);
    painter.setBrush(at(m_surface, 0.4));
    painter.drawRoundedRect(QRectF(span.x, 1, span.width, kLower - 2), 2, 2);
    for (int level = 2; level <= static_cast<int>(Geometry::kCurveMaxZoom); ++level) {
        painter.fillRect(QRectF(span.x, Geometry::curveY(level, kLower), span.width, 0.5),
                         at(Qt::white, 0.04));
    }
    QPolygonF line;
    for (const Point& point :
         TimelineMarks::curveLine(model.geometry, keyframe, model.videoWidth, kLower)) {
        line.append({point.x, point.y});
    }
    QPolygonF area = line;
    area << QPointF(line.back().x(), kLower) << QPointF(line.front().x(), kLower);
    painter.setPen(Qt::NoPen);
    painter.setBrush(at(m_accent, 0.08));
    painter.drawPolygon(area);
    painter.setPen(QPen(at(m_accent, 0.6), 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(line);
}

void TimelineQuickItem::paintCurvePoints(QPainter& painter, const ZoomKeyframe& keyframe) const {
    constexpr double kRadius = Geometry::kCurvePointSize / 2;
    painter.setPen(QPen(at(Qt::white, 0.8), 1));
    painter.setBrush(m_accent);
    for (const ZoomCurvePoint& point : keyframe.zoomCurve) {
        const Point middle = TimelineMarks::curvePoint(m_timeline->model().geometry, point, kLower);
        painter.drawEllipse(QPointF(middle.x, middle.y), kRadius, kRadius);
    }
}

void TimelineQuickItem::paintPlayhead(QPainter& painter) const {
    constexpr double kLine = 1.5;
    constexpr double kTriangleWidth = 10;
    constexpr double kTriangleHeight = 6;
    const double middle = width() / 2;
    painter.fillRect(QRectF(middle - kLine / 2, kUpperTop, kLine, kUpper + kLower), m_accent);
    const QPolygonF triangle({{middle - kTriangleWidth / 2, kUpperTop},
                              {middle + kTriangleWidth / 2, kUpperTop},
                              {middle, kUpperTop + kTriangleHeight}});
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_accent);
    painter.drawPolygon(triangle);
}

void TimelineQuickItem::paintTrimHandle(QPainter& painter, double x, bool isDragged,
                                        bool isTrimmed) const {
    constexpr double kDot = 2;
    constexpr double kDotStep = 5; // 2 high, 3 apart
    const double width = Geometry::kTrimHandleWidth;
    painter.setPen(Qt::NoPen);
    painter.setBrush(at(m_accent, isDragged ? 1.0 : isTrimmed ? 0.8 : 0.3));
    painter.drawRoundedRect(QRectF(x - width / 2, 2, width, kUpper - 4), 2, 2);
    const QColor dots = at(m_background, isDragged || isTrimmed ? 0.6 : 0.3);
    for (int i = -1; i <= 1; ++i) {
        painter.fillRect(QRectF(x - kDot / 2, kUpper / 2 - kDot / 2 + i * kDotStep, kDot, kDot),
                         dots);
    }
}

void registerEditorItems() {
    qml_register_types_Tavi_Editor();
}

} // namespace tavi
