// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The cache: data areas of eight bits, one word or one counter, found by station, register type
// and start, created on first use and kept until the next set-up. Their marks say what the host
// monitors. Areas are written to through a WritableArea, and by this folder only.

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

// An area that can be written to in place while this lives. Not to be held across a callback, in
// which the host may add areas.
class WritableArea
{
public:
    explicit WritableArea(int position)
        : m_edit(driver.areaIndex, driver.dataAreas), m_area(driver.dataAreas[position])
    {}
    _DATA_& operator*() const { return m_area; }
    _DATA_* operator->() const { return &m_area; }

private:
    AreaIndex::Edit m_edit;
    _DATA_& m_area;
};

// Finds the areas of one station and register type, creating those that are missing. What it finds
// holds until the next callback only.
class AreaFinder
{
public:
    AreaFinder(int stationNo, const RegisterType& type)
        : m_stationNo(stationNo), m_registerType(registerTypeName(type))
    {}

    // The area that starts at `startIndex`, aligned or not.
    const _DATA_& area(int startIndex) const { return driver.dataAreas.at(position(startIndex)); }
    WritableArea writableArea(int startIndex) const { return WritableArea(position(startIndex)); }

private:
    // Inlined whatever else the compiler has in view: a call for each value makes an exchange a
    // tenth dearer.
    [[gnu::always_inline]] int position(int startIndex) const
    {
        return driver.areaIndex.findOrAppend(driver.dataAreas, m_stationNo, m_registerType,
                                             startIndex);
    }

    int m_stationNo;
    const QString& m_registerType;
};

// The bytes that a reader sees: what the host wrote, while that is not confirmed, else what the
// PLC holds.
const unsigned char* currentValue(const _DATA_& area);

// How many elements one call serves that asks for `count` bits, words or words of counters.
int servedElements(const RegisterType& type, int startIndex, int count);

#endif
