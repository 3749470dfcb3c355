// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See memory_trend.h. Least squares.

#include "memory_trend.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace fxsoak {

qint64 residentBytes()
{
    std::ifstream pages("/proc/self/statm");
    qint64 all = 0;
    qint64 resident = 0;
    pages >> all >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

bool memoryIsWatched()
{
#if defined(__SANITIZE_ADDRESS__) || defined(FX_EMULATED)
    return true;
#else
    const char* const preloaded = std::getenv("LD_PRELOAD");
    return preloaded != nullptr && std::string(preloaded).find("vgpreload") != std::string::npos;
#endif
}

void MemoryTrend::add(qint64 exchanges, qint64 bytes)
{
    m_points.push_back({static_cast<double>(exchanges), static_cast<double>(bytes)});
}

MemoryTrend::Point MemoryTrend::mean() const
{
    Point sum{0, 0};
    for (const Point& point : m_points)
        sum = {sum.exchanges + point.exchanges, sum.bytes + point.bytes};
    const auto points = static_cast<double>(m_points.size());
    return {sum.exchanges / points, sum.bytes / points};
}

double MemoryTrend::bytesAnExchange() const
{
    if (m_points.size() < 2)
        return 0;
    const Point middle = mean();
    double products = 0;
    double squares = 0;
    for (const Point& point : m_points) {
        const double distance = point.exchanges - middle.exchanges;
        products += distance * (point.bytes - middle.bytes);
        squares += distance * distance;
    }
    return products / squares;
}

double MemoryTrend::fittedGrowthBytes() const
{
    if (m_points.empty())
        return 0;
    return bytesAnExchange() * (m_points.back().exchanges - m_points.front().exchanges);
}

}  // namespace fxsoak
