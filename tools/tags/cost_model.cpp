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

LineCost measuredLine(const Statistics& statistics, int baud, std::optional<qint64> turnaroundUs)
{
    if (turnaroundUs)
        return {*turnaroundUs, baud};
    const qint64 exchanges = statistics.total().accepted;
    if (exchanges == 0)
        return {LineCost().turnaroundUs, baud};
    const qint64 charactersUs =
        qint64(1000000) * bitsPerCharacter * statistics.acceptedCharacters / baud;
    if (2 * statistics.acceptedUs < charactersUs)
        return {std::max(statistics.acceptedUs / exchanges, leastOnNetworkUs), networkBaud};
    return {std::max<qint64>(statistics.acceptedUs - charactersUs, 0) / exchanges, baud};
}

}  // namespace fxtools
