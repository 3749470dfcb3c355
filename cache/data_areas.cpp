// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Find-or-create and monitor marks. Areas are always reached by key: a position is used before
// the next callback only, since the host may call back in and add areas.

#include "cache/data_areas.h"

namespace {

constexpr int bitsInInt = 32;

// Bit areas have a mark for each of their bits, the others one in bit 0 of another field.
void markElement(const RegisterType& type, int position, int address)
{
    int _DATA_::*const marks = isBit(type) ? &_DATA_::changeFlags : &_DATA_::monitorFlags;
    const int oldMarks = driver.dataAreas.at(position).*marks;
    const int newMarks = _setBitValue(oldMarks, isBit(type) ? bitInArea(address) : 0, 1);
    if (newMarks == oldMarks)
        return;
    const AreaIndex::Edit edit(driver.areaIndex, driver.dataAreas);
    driver.dataAreas[position].*marks = newMarks;
}

}  // namespace

int getIndexOfDataArea(int stationNo, QString registerType, int startIndex, QList<_DATA_>& areas)
{
    if (&areas == &driver.dataAreas)
        return AreaFinder(stationNo, registerType).position(startIndex);
    return AreaIndex().findOrAppend(areas, stationNo, registerType, startIndex);
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

const unsigned char* currentValue(const _DATA_& area)
{
    return area.bufferSelect != 0 ? area.valueBuffer1 : area.valueBuffer0;
}

int servedElements(const RegisterType& type, int startIndex, int count)
{
    return servedCount(startIndex, elementCount(type, qMin(count, fxMaxElements)));
}

int _setDataAreaMonitorFlag(int stationNo, QString registerType, int startIndex, int count)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr)
        return 0;
    const AreaFinder finder(stationNo, registerTypeName(*type));
    const int elements = servedElements(*type, startIndex, count);
    for (int i = 0; i < elements; ++i) {
        const int address = startIndex + i;
        markElement(*type, finder.position(areaStart(*type, address)), address);
    }
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
