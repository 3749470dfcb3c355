// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a read costs on the line: the time that a PLC lets pass before it answers, and ten bits for
// each character of the request and of the reply. ENQ is sent only after a time-out, so a cycle
// without errors has none. Costs are whole numbers: two plans can be compared exactly.

#pragma once

#include "tools/exchange/statistics.h"

#include <optional>

namespace fxtools {

struct LineCost
{
    qint64 turnaroundUs = 20000;  // from the end of a request to the beginning of its reply
    int baud = 9600;
};

using Cost = qint64;  // microseconds times the baud rate

constexpr int bitsPerCharacter = 10;                      // start, seven data, even parity, stop
constexpr int requestCharacters = 1 + 1 + 4 + 2 + 1 + 2;  // STX, command, address, bytes, ETX, sum

constexpr int exchangeCharacters(int bytes)
{
    return requestCharacters + 1 + 2 * bytes + 1 + 2;  // STX, two digits a byte, ETX, sum
}

constexpr Cost charactersCost(int characters)
{
    return Cost(1000000) * bitsPerCharacter * characters;
}

constexpr Cost exchangeCost(const LineCost& line, int bytes)
{
    return line.turnaroundUs * line.baud + charactersCost(exchangeCharacters(bytes));
}

constexpr double milliseconds(Cost cost, const LineCost& line)
{
    return static_cast<double>(cost) / line.baud / 1000;
}

struct LineUse
{
    qint64 exchanges = 0;
    qint64 characters = 0;
    qint64 tookUs = 0;
};

LineUse acceptedUse(const Statistics& statistics);

// The line as exchanges have shown it: the turnaround is what they took beyond their characters. No
// exchange so far: a usual one, unless one is given.
LineCost measuredLine(const LineUse& use, int baud, std::optional<qint64> turnaroundUs = {});

}  // namespace fxtools
