// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How much of a line periods need, and what becomes of those that it cannot keep: long periods are
// stretched before short ones, until the line is just full. A twentieth of the line belongs to all
// periods alike, so that none waits for ever.

#pragma once

#include "tools/library/registers.h"

namespace fxtools {

// All that is wanted at one period.
struct PeriodLoad
{
    qint64 wantedUs;  // 0: as fast as the line allows
    double costUs;    // to read all of it once
    QVector<RegisterRange> registers = {};
    qint64 expectedUs = 0;  // the period that the line can keep

    // By more than a hundredth.
    bool isLate() const { return wantedUs > 0 && expectedUs - wantedUs > wantedUs / 100; }
};

struct LineLoad
{
    double used = 0;              // the part of the line that all periods need; 1: it is full
    QVector<PeriodLoad> periods;  // the shortest first; as fast as the line allows comes last
};

bool isShorter(qint64 periodUs, qint64 otherUs);

// Finds out what the line can keep of these periods.
LineLoad loadOf(const QVector<PeriodLoad>& wanted);

}  // namespace fxtools
