// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What this process holds of memory as the exchanges go by, and the straight line through it.

#pragma once

#include <QtGlobal>

#include <vector>

namespace fxsoak {

qint64 residentBytes();

// Whether a checker keeps freed memory by design, or an emulator adds its own, so that growth says
// nothing.
bool memoryIsWatched();

class MemoryTrend
{
public:
    void add(qint64 exchanges, qint64 bytes);

    double bytesAnExchange() const;    // slope of the fitted line
    double fittedGrowthBytes() const;  // over all that was added

private:
    struct Point
    {
        double exchanges;
        double bytes;
    };

    Point mean() const;

    std::vector<Point> m_points;
};

}  // namespace fxsoak
