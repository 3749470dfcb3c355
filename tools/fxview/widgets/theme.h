// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Colours and shapes, light and dark. A colour never carries a meaning alone: each goes with a
// shape of its own and with a word.

#pragma once

#include "tools/fxview/plc/plc_source.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPalette>

namespace fxview {

enum class Sign
{
    None,
    Disc,      // good; a lamp that is on
    Ring,      // a lamp that is off
    HalfDisc,  // stale
    Cross,     // bad
    Triangle,  // an alarm
};

enum class Meaning
{
    Plain,
    Good,
    Stale,
    Bad,
    Alarm,
    LampOn,
};

bool isDark(const QPalette& palette);
void applyTheme(QApplication& application, bool isDark);

QColor colourOf(Meaning meaning, const QPalette& palette);
QColor curveColour(int number, const QPalette& palette);

Sign signOf(Quality quality);
Meaning meaningOf(Quality quality);

void paintSign(QPainter& painter, const QRectF& area, Sign sign, const QColor& colour);
QPixmap signPixmap(Sign sign, const QColor& colour, int size, qreal pixelRatio);

}  // namespace fxview
