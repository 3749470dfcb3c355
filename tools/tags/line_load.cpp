// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/line_load.h"

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr double sharedPart = 0.05;  // of the line

double neededPart(const PeriodLoad& period)
{
    return period.wantedUs > 0 ? period.costUs / static_cast<double>(period.wantedUs) : 1;
}

}  // namespace

bool isShorter(qint64 periodUs, qint64 otherUs)
{
    return periodUs > 0 && (otherUs == 0 || periodUs < otherUs);
}

// Each period leaves what those behind it need, or their share if that is less.
LineLoad loadOf(const QVector<PeriodLoad>& wanted)
{
    LineLoad load = {0, wanted};
    std::sort(load.periods.begin(), load.periods.end(),
              [](const PeriodLoad& one, const PeriodLoad& other) {
                  return isShorter(one.wantedUs, other.wantedUs);
              });
    const double share = sharedPart / std::max(wanted.size(), 1);
    double left = 1;
    for (const PeriodLoad& period : wanted)
        left -= std::min(neededPart(period), share);
    for (PeriodLoad& period : load.periods) {
        const double needed = neededPart(period);
        if (period.wantedUs > 0)
            load.used += needed;
        left += std::min(needed, share);
        const double part = std::min(needed, left);
        left -= part;
        period.expectedUs = std::max(period.wantedUs, qint64(std::llround(period.costUs / part)));
    }
    return load;
}

}  // namespace fxtools
