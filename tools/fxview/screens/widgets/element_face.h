// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What an element shows of its tag, painted. A bad value is not shown at all, a stale one dimmed;
// sign and word of the quality stand below the face.

#pragma once

#include "tools/fxview/models/value_book.h"
#include "tools/fxview/screens/screen.h"

#include <QPainter>
#include <QPalette>

namespace fxview {

// The tag of an element at one time; without a tag it is good.
struct Face
{
    const Element& element;
    const fxtools::Tag* tag;  // null: none
    const History* history;   // null: none
    Quality quality = Quality::Good;
    bool hasValue = false;  // good or stale
    QJsonValue value;       // if there is one
    QString alarm;          // "low", "high" or none
    qint64 nowMs = 0;

    bool isOn() const { return hasValue && value.toDouble() != 0; }
};

Face faceOf(const Element& element, const ValueBook& book, qint64 nowMs);

QString faceText(const Face& face);  // "71.50 °C", "on", "–"

void paintFace(QPainter& painter, const QRectF& area, const Face& face, const QPalette& palette);

// In the area and as large as fits, up to three times the font.
void paintLargeText(QPainter& painter, const QRectF& area, const QString& text,
                    Qt::Alignment alignment = Qt::AlignCenter);

// Of what the face says: plain, or stale, bad or an alarm.
QColor faceColour(const Face& face, const QPalette& palette);

// The sign and the colour of a bit.
QPixmap bitPixmap(const Face& face, const QPalette& palette, int size, qreal pixelRatio);

}  // namespace fxview
