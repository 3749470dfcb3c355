// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The elements with a scale, painted: bar and dial. Where there is room, round numbers stand beside
// the scale; in a small place there are none.

#pragma once

#include "tools/fxview/screens/widgets/element_face.h"

namespace fxview {

void paintBar(QPainter& painter, const QRectF& area, const Face& face, const QPalette& palette);
void paintDial(QPainter& painter, const QRectF& area, const Face& face, const QPalette& palette);

struct ScaleMark
{
    double part;  // of the scale, from 0 to 1
    QString text;
};

// The ends of a scale and round numbers between them, all in all up to so many.
QVector<ScaleMark> scaleMarks(double least, double most, int upTo);

}  // namespace fxview
