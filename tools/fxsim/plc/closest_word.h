// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What somebody may have meant: " (did you mean peek?)" for "pek"; empty when nothing is close.

#pragma once

#include <QStringList>

namespace fxsim {

QString didYouMean(const QString& word, const QStringList& known);

}  // namespace fxsim
