// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The cache: data areas of eight bits, one word or one counter, found by station, register type
// and start, created on first use and kept until the next set-up. Their marks say what the host
// monitors.

#ifndef CACHE_DATA_AREAS_H
#define CACHE_DATA_AREAS_H

#include "address/register_types.h"
#include "driver/mitsubishi_fx1s.h"

// Position of the first area with that key; a missing one is appended, all zero.
int getIndexOfDataArea(int stationNo, QString registerType, int startIndex, QList<_DATA_>& areas);

// `value` with bit `bit` set or cleared; unchanged for a bit outside 0 to 31.
int _setBitValue(int value, int bit, int on);

// Whether bit `bit` of `value` is set; no bit outside 0 to 31 is.
bool isBitSet(int value, int bit);

// Marks the elements from `startIndex` on as monitored, creating their areas. `count` means bits,
// words, or for "32CV" words, two a counter. Always 0.
int _setDataAreaMonitorFlag(int stationNo, QString registerType, int startIndex, int count);

// Clears the marks of all areas.
void clearMonitorFlags();

// Start of the bit area that holds `address`, and the bit within it; both truncate toward zero.
constexpr int bitAreaStart(int address)
{
    return address / bitsPerArea * bitsPerArea;
}
constexpr int bitInArea(int address)
{
    return address % bitsPerArea;
}

// Start of the area that holds the element numbered `address`.
constexpr int areaStart(const RegisterType& type, int address)
{
    return isBit(type) ? bitAreaStart(address) : address;
}

// Finds the areas of one station and register type in the driver's cache, creating those that are
// missing. A position holds until the next callback only: the host may add areas from inside it.
// The text must outlive the finder.
class AreaFinder
{
public:
    AreaFinder(int stationNo, const QString& registerType)
        : m_stationNo(stationNo), m_registerType(registerType)
    {}

    // The area that starts at `startIndex`, aligned or not.
    int position(int startIndex) const
    {
        return driver.areaIndex.findOrAppend(driver.dataAreas, m_stationNo, m_registerType,
                                             startIndex);
    }
    const _DATA_& area(int startIndex) const { return driver.dataAreas.at(position(startIndex)); }

private:
    int m_stationNo;
    const QString& m_registerType;
};

// The bytes that a reader sees: what the host wrote, while that is not confirmed, else what the
// PLC holds.
const unsigned char* currentValue(const _DATA_& area);

// How many elements of a type one call serves that asks for `count` from `startIndex` on.
int servedElements(const RegisterType& type, int startIndex, int count);

#endif
