// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What somebody who mistyped a name may have meant.

#pragma once

#include <QStringList>

namespace fxtools {

// "; did you mean 'read'?" for the known name that is nearest to `typed`; empty if none is near.
QString didYouMean(const QString& typed, const QStringList& known);

// "unknown command 'rea'; did you mean 'read'?", or with a list of all names if none is near.
QString unknownName(const char* kind, const QString& typed, const QStringList& known);

}  // namespace fxtools
