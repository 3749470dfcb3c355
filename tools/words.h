// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Words that people type, on a command line or in a file: times with their units, and what somebody
// who mistyped a name may have meant.

#pragma once

#include <QStringList>

#include <optional>
#include <string>

namespace fxtools {

// What a number may be; both ends are allowed.
struct Range
{
    qint64 least;
    qint64 most;
};

// "500", "500ms", "1.5s", "10min", "8h" or "1d"; nothing if `text` is not a time.
std::optional<qint64> parseTimeMs(const std::string& text);

// "; did you mean 'read'?" for the known name that is nearest to `typed`; empty if none is near.
QString didYouMean(const QString& typed, const QStringList& known);

// "unknown command 'rea'; did you mean 'read'?", or with a list of all names if none is near.
QString unknownName(const char* kind, const QString& typed, const QStringList& known);

}  // namespace fxtools
