// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/cost_model.h"

#include <algorithm>

namespace fxtools {

namespace {

// A line much faster than it should be, such as a network: only the number of exchanges counts.
constexpr int networkBaud = 1000000000;
constexpr qint64 leastOnNetworkUs = 10;

}  // namespace

LineUse acceptedUse(const Statistics& statistics)
{
    return {statistics.total().accepted, statistics.acceptedCharacters, statistics.acceptedUs};
}

LineCost measuredLine(const LineUse& use, int baud, std::optional<qint64> turnaroundUs)
{
    if (turnaroundUs)
        return {*turnaroundUs, baud};
    if (use.exchanges == 0)
        return {LineCost().turnaroundUs, baud};
    const qint64 charactersUs = qint64(1000000) * bitsPerCharacter * use.characters / baud;
    if (2 * use.tookUs < charactersUs)
        return {std::max(use.tookUs / use.exchanges, leastOnNetworkUs), networkBaud};
    return {std::max<qint64>(use.tookUs - charactersUs, 0) / use.exchanges, baud};
}

}  // namespace fxtools
