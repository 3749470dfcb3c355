// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What may stand on the command line and in the configuration file: how large numbers may be, and
// what somebody who mistyped a name may have meant.

#pragma once

#include <QStringList>

#include <optional>
#include <string>

namespace fxtools {

struct Limits
{
    qint64 least;
    qint64 most;
};

constexpr Limits timeoutLimitsMs{10, 60000};  // in less no serial line brings a reply
constexpr Limits retryLimits{0, 100};
constexpr Limits reconnectLimitsS{0, 86400};

constexpr int usualRetries = 2;

// "500", "500ms", "1.5s", "10min", "8h" or "1d"; nothing if `text` is not a time.
std::optional<qint64> parseTimeMs(const std::string& text);

// "; did you mean 'read'?" for the known name that is nearest to `typed`; empty if none is near.
QString didYouMean(const QString& typed, const QStringList& known);

// "unknown command 'rea'; did you mean 'read'?", or with a list of all names if none is near.
QString unknownName(const char* kind, const QString& typed, const QStringList& known);

}  // namespace fxtools
