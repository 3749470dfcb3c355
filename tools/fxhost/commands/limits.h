// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How large the numbers of the options may be, on the command line and in the configuration file.

#pragma once

#include <QtGlobal>

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

}  // namespace fxtools
