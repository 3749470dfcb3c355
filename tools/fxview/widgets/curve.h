// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The curve of a history: for each column of pixels a line from its lowest value to its highest,
// joined to that of the column before. Gaps stay gaps.

#pragma once

#include "tools/fxview/models/history.h"

#include <QPainter>

namespace fxview {

// The range that shows all of it, never an empty one.
Extent roomFor(const QVector<Extent>& columns);

// The range in which that one takes only this part of the height; lane 0 is at the top.
Extent inLane(const Extent& range, int lane, int lanes);

constexpr Extent roomForBit = {-0.25, 1.25};

// The lines that join to one, from left to right. Columns are spread over the width of the area.
QVector<QPolygonF> curveLines(const QRectF& area, const QVector<Extent>& columns,
                              const Extent& range);

void paintCurve(QPainter& painter, const QRectF& area, const QVector<Extent>& columns,
                const Extent& range);

}  // namespace fxview
