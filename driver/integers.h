// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Arithmetic on numbers from outside: taken in 64 bits, brought back to 32 without wrapping.

#ifndef DRIVER_INTEGERS_H
#define DRIVER_INTEGERS_H

#include <QtGlobal>

#include <algorithm>
#include <limits>

constexpr qint64 largestInt = std::numeric_limits<int>::max();
constexpr qint64 smallestInt = std::numeric_limits<int>::min();

// The int nearest to `value`.
constexpr int saturated(qint64 value)
{
    return static_cast<int>(std::clamp(value, smallestInt, largestInt));
}

// How many ints there are from `first` up.
constexpr qint64 intsFrom(int first)
{
    return largestInt - first + 1;
}

#endif
