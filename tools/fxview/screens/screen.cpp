// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/screen.h"

namespace fxview {

const QStringList lampColours{QStringLiteral("green"),  QStringLiteral("red"),
                              QStringLiteral("yellow"), QStringLiteral("blue"),
                              QStringLiteral("white"),  QStringLiteral("grey")};

bool isWriting(ElementKind kind)
{
    return kind == ElementKind::PushButton || kind == ElementKind::Switch ||
           kind == ElementKind::NumericEntry;
}

QString nameOf(ElementKind kind)
{
    return QLatin1String(elementNames[static_cast<size_t>(kind)]);
}

}  // namespace fxview
