#include "ui/CanvasPainter.h"

#include <QPainter>
#include <QPolygon>
#include <algorithm>
#include <cstdlib>

namespace {

QColor ToQColor(Color c) {
    return QColor(c.r, c.g, c.b);
}

QRect ToQRect(const Rect& r) {
    return QRect(r.left, r.top, r.right - r.left, r.bottom - r.top);
}

QPen PenFor(Color c) {
    if (c.none)
        return QPen(Qt::NoPen);
    QPen pen(ToQColor(c));
    pen.setWidth(0);
    return pen;
}

QBrush BrushFor(Color c) {
    return c.none ? QBrush(Qt::NoBrush) : QBrush(ToQColor(c));
}

// The point one pixel before `to` on the way from `from`: the rows' lines
// leave out their last pixel.
QPoint OneShort(Point2 from, Point2 to) {
    const int dx = to.x - from.x;
    const int dy = to.y - from.y;
    const int steps = std::max(std::abs(dx), std::abs(dy));
    if (steps <= 1)
        return QPoint(from.x, from.y);
    const double f = double(steps - 1) / steps;
    return QPoint(from.x + qRound(dx * f), from.y + qRound(dy * f));
}

int AlignmentFor(uint32_t flags) {
    int qt = (flags & TextCenter) ? Qt::AlignHCenter : Qt::AlignLeft;
    if (!(flags & TextSingleLine))
        return qt | Qt::AlignTop | Qt::TextWordWrap;
    qt |= Qt::TextSingleLine;
    if (flags & TextVCenter)
        return qt | Qt::AlignVCenter;
    if (flags & TextBottom)
        return qt | Qt::AlignBottom;
    return qt | Qt::AlignTop;
}

} // namespace

CanvasPainter::CanvasPainter(QPainter& p) : painter(p) {
    painter.setRenderHint(QPainter::Antialiasing, false);
}

QFont CanvasPainter::FontFor(const std::string& name, int32_t pointSize10) {
    if (name.empty())
        return CurrentQFont();
    // The two names the rows use go to the bundled fonts by name, so that the
    // drawing does not change with whatever other fonts a machine has (a
    // machine with the URW fonts would otherwise draw "Times" in those).
    QString family = QString::fromStdString(name);
    if (name == "Small Fonts")
        family = QStringLiteral("DejaVu Sans");
    else if (name == "Times")
        family = QStringLiteral("Liberation Serif");
    QFont font(family);
    font.setPointSizeF(pointSize10 / 10.0);
    return font;
}

// Stands in for the stock font of a window's drawing surface, which rows
// draw with when they name no font: a bold sans font of its size.
QFont CanvasPainter::CurrentQFont() {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    font.setPixelSize(13);
    return font;
}

void CanvasPainter::Replay(const std::vector<CanvasRecord>& records) {
    for (const CanvasRecord& record : records)
        Draw(record);
}

void CanvasPainter::Draw(const CanvasRecord& record) {
    const QRect r = ToQRect(record.rect);
    switch (record.kind) {
    case CanvasRecord::Fill:
        if (!record.fill.none)
            painter.fillRect(r, ToQColor(record.fill));
        break;
    case CanvasRecord::Frame:
        if (r.width() > 0 && r.height() > 0 && !record.pen.none) {
            const QColor c = ToQColor(record.pen);
            painter.fillRect(QRect(r.left(), r.top(), r.width(), 1), c);
            painter.fillRect(QRect(r.left(), r.bottom(), r.width(), 1), c);
            painter.fillRect(QRect(r.left(), r.top(), 1, r.height()), c);
            painter.fillRect(QRect(r.right(), r.top(), 1, r.height()), c);
        }
        break;
    case CanvasRecord::Line:
    case CanvasRecord::Polyline:
        DrawPolyline(record.points, record.pen);
        break;
    case CanvasRecord::Polygon: {
        QPolygon polygon;
        for (const Point2& p : record.points)
            polygon << QPoint(p.x, p.y);
        painter.setPen(PenFor(record.pen));
        painter.setBrush(BrushFor(record.fill));
        painter.drawPolygon(polygon);
        break;
    }
    case CanvasRecord::RoundRect:
        painter.setPen(PenFor(record.pen));
        painter.setBrush(BrushFor(record.fill));
        painter.drawRoundedRect(QRectF(r.left(), r.top(), r.width() - 1, r.height() - 1),
                                record.ellipseWidth / 2.0, record.ellipseHeight / 2.0);
        break;
    case CanvasRecord::Text:
        DrawText(record);
        break;
    case CanvasRecord::Repaint:
        break;
    }
}

void CanvasPainter::DrawPolyline(const std::vector<Point2>& points, Color pen) {
    if (points.size() < 2 || pen.none || (points.size() == 2 && points[0] == points[1]))
        return;
    QPolygon polygon;
    for (size_t i = 0; i + 1 < points.size(); ++i)
        polygon << QPoint(points[i].x, points[i].y);
    const QPoint end = OneShort(points[points.size() - 2], points.back());
    if (end != polygon.last())
        polygon << end;
    painter.setPen(PenFor(pen));
    if (polygon.size() == 1)
        painter.drawPoint(polygon.first());
    else
        painter.drawPolyline(polygon);
}

void CanvasPainter::DrawText(const CanvasRecord& record) {
    QRect r = ToQRect(record.rect);
    const QString text = QString::fromStdString(record.text);
    const int alignment = AlignmentFor(record.flags);
    painter.setFont(FontFor(record.font, record.pointSize10));
    if (record.flags & TextFitted) {
        const QFontMetrics metrics = painter.fontMetrics();
        r.setSize(QSize(metrics.horizontalAdvance(text), metrics.height()));
    }
    if (record.flags & TextOpaque)
        painter.fillRect(painter.boundingRect(r, alignment, text).intersected(r), Qt::white);
    painter.setPen(PenFor(record.pen));
    painter.drawText(r, alignment, text);
}
