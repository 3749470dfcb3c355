// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/cost_model.h"

#include <algorithm>

namespace fxtools {

namespace {

// Of a line much faster than it should be, such as a network: only the number of exchanges counts.
constexpr qint64 networkTurnaroundUs = 1000000;

}  // namespace

LineCost measuredLine(const Statistics& statistics, int baud)
{
    const qint64 exchanges = statistics.total().accepted;
    if (exchanges == 0)
        return {LineCost().turnaroundUs, baud};
    const qint64 charactersUs =
        qint64(1000000) * bitsPerCharacter * statistics.acceptedCharacters / baud;
    if (2 * statistics.acceptedUs < charactersUs)
        return {networkTurnaroundUs, baud};
    return {std::max<qint64>(statistics.acceptedUs - charactersUs, 0) / exchanges, baud};
}

}  // namespace fxtools
