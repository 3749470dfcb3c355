// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Texts that must not be cut in the middle, in places that may be narrow.

#pragma once

#include <QFontMetrics>
#include <QStringList>
#include <QVector>

namespace fxview {

// Over lines of this width, broken between words; empty where a word is wider than that.
QStringList wrapped(const QString& text, int width, const QFontMetrics& metrics);

// The least that a text needs on two lines.
int widthOfTwoLines(const QString& text, const QFontMetrics& metrics);

struct WrappedText
{
    QString text;
    int mostLines;
};

// The lines of the first text that fits; the last one is cut if it must be. Empty ones do not
// count.
QStringList firstThatFits(const QVector<WrappedText>& texts, int width,
                          const QFontMetrics& metrics);

}  // namespace fxview
