// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/curve.h"

#include <QPaintEngine>

#include <algorithm>

namespace fxview {

namespace {

// In the columns after that of the point before, from its height to that of this one.
QRect barTo(const QPolygonF& line, int point)
{
    const QPointF& before = line[qMax(point - 1, 0)];
    const auto x = static_cast<int>(std::floor(line[point].x()));
    const auto y = static_cast<int>(std::floor(line[point].y()));
    const auto beforeX = static_cast<int>(std::floor(before.x()));
    const auto beforeY = static_cast<int>(std::floor(before.y()));
    const int left = qMin(beforeX + 1, x);
    return {left, qMin(y, beforeY), x - left + 1, std::abs(y - beforeY) + 1};
}

}  // namespace

Extent roomFor(const QVector<Extent>& columns)
{
    Extent range;
    for (const Extent& column : columns)
        range.include(column);
    if (range.isEmpty())
        return {0, 1};
    const double width = range.highest - range.lowest;
    const double margin = width > 0 ? width / 20 : std::max(std::abs(range.lowest) / 20, 0.5);
    return {range.lowest - margin, range.highest + margin};
}

Extent inLane(const Extent& range, int lane, int lanes)
{
    const double width = range.highest - range.lowest;
    return {range.lowest - width * (lanes - 1 - lane), range.highest + width * lane};
}

QVector<QPolygonF> curveLines(const QRectF& area, const QVector<Extent>& columns,
                              const Extent& range)
{
    const double perValue = area.height() / (range.highest - range.lowest);
    const double perColumn = area.width() / std::max(columns.size(), 1);
    const auto heightOf = [&](double value) {
        return area.bottom() -
               (std::clamp(value, range.lowest, range.highest) - range.lowest) * perValue;
    };
    QVector<QPolygonF> lines;
    bool isOpen = false;
    for (int column = 0; column < columns.size(); ++column) {
        const Extent& extent = columns[column];
        if (extent.isEmpty()) {
            isOpen = false;
            continue;
        }
        if (!isOpen)
            lines.append(QPolygonF());
        const double x = area.left() + (column + 0.5) * perColumn;
        double near = heightOf(extent.lowest);
        double far = heightOf(extent.highest);
        QPolygonF& line = lines.last();
        if (isOpen && std::abs(line.last().y() - far) < std::abs(line.last().y() - near))
            std::swap(near, far);
        line.append({x, near});
        if (far != near || !isOpen)
            line.append({x, far});
        isOpen = true;
    }
    return lines;
}

// On pixels a bar for each column, which is filled many times faster than a line is drawn; the
// lines are for pictures that are enlarged.
void paintCurve(QPainter& painter, const QRectF& area, const QVector<Extent>& columns,
                const Extent& range)
{
    const bool isRaster = painter.paintEngine()->type() == QPaintEngine::Raster;
    for (const QPolygonF& line : curveLines(area, columns, range)) {
        if (isRaster) {
            for (int point = 0; point < line.size(); ++point)
                painter.fillRect(barTo(line, point), painter.pen().color());
        } else if (line.size() == 2 && line.first() == line.last()) {
            painter.drawPoint(line.first());
        } else {
            painter.drawPolyline(line);
        }
    }
}

}  // namespace fxview
