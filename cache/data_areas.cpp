// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Find-or-create and monitor marks.

#include "cache/data_areas.h"

namespace {

constexpr int bitsInInt = 32;
constexpr int wordsPerCounter = 2;

// Bit areas have a mark for each of their bits, the others one in bit 0 of another field.
void markElement(const AreaFinder& finder, const RegisterType& type, int address)
{
    int _DATA_::*const marks = isBit(type) ? &_DATA_::changeFlags : &_DATA_::monitorFlags;
    const int start = areaStart(type, address);
    const int oldMarks = finder.area(start).*marks;
    const int newMarks = _setBitValue(oldMarks, isBit(type) ? bitInArea(address) : 0, 1);
    if (newMarks != oldMarks)
        (*finder.writableArea(start)).*marks = newMarks;
}

}  // namespace

int getIndexOfDataArea(int stationNo, QString registerType, int startIndex, QList<_DATA_>& areas)
{
    AreaIndex other;
    AreaIndex& index = &areas == &driver.dataAreas ? driver.areaIndex : other;
    return index.findOrAppend(areas, stationNo, registerType, startIndex);
}

int _setBitValue(int value, int bit, int on)
{
    if (bit < 0 || bit >= bitsInInt)
        return value;
    const unsigned int mask = 1U << bit;
    const unsigned int bits = static_cast<unsigned int>(value);
    return static_cast<int>(on != 0 ? bits | mask : bits & ~mask);
}

bool isBitSet(int value, int bit)
{
    return bit >= 0 && bit < bitsInInt && ((static_cast<unsigned int>(value) >> bit) & 1U) != 0;
}

int _setDataAreaMonitorFlag(int stationNo, QString registerType, int startIndex, int count)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr)
        return 0;
    const AreaFinder finder(stationNo, *type);
    const int elements = servedElements(*type, startIndex, count);
    for (int i = 0; i < elements; ++i)
        markElement(finder, *type, startIndex + i);
    return 0;
}

void clearMonitorFlags()
{
    const AreaIndex::Edit edit(driver.areaIndex, driver.dataAreas);
    for (_DATA_& area : driver.dataAreas) {
        area.monitorFlags = 0;
        area.changeFlags = 0;
    }
}

const unsigned char* currentValue(const _DATA_& area)
{
    return area.bufferSelect != 0 ? area.valueBuffer1 : area.valueBuffer0;
}

int servedElements(const RegisterType& type, int startIndex, int count)
{
    const int perElement = isDoubleWord(type) ? wordsPerCounter : 1;
    return servedCount(startIndex, qMin(count, fxMaxElements) / perElement);
}
