// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host's only way to read PLC values: copies them out of the cache, never off the link.

#include "cache/data_areas.h"

#include <algorithm>

namespace {

void copyBits(const AreaFinder& finder, int startIndex, int bitCount, unsigned char* out)
{
    for (int i = 0; i < bitCount; ++i) {
        const int address = startIndex + i;
        const _DATA_& area = finder.area(bitAreaStart(address));
        out[i] = isBitSet(currentValue(area)[0], bitInArea(address)) ? 1 : 0;
    }
}

// For each kind by itself, so that the width of a copy is known when it is compiled.
template <RegisterKind kind>
void copyValues(const AreaFinder& finder, int startIndex, int elements, unsigned char* out)
{
    for (int i = 0; i < elements; ++i)
        out = std::copy_n(currentValue(finder.area(startIndex + i)), valueBytes(kind), out);
}

}  // namespace

int intf_getData(int stationNo, QString registerType, int startIndex, int count, unsigned char* out)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr || out == nullptr)
        return fxDone;
    const AreaFinder finder(stationNo, *type);
    const int elements = servedElements(*type, startIndex, count);
    switch (type->kind) {
    case RegisterKind::Bit:
        copyBits(finder, startIndex, elements, out);
        break;
    case RegisterKind::Word:
        copyValues<RegisterKind::Word>(finder, startIndex, elements, out);
        break;
    case RegisterKind::DoubleWord:
        copyValues<RegisterKind::DoubleWord>(finder, startIndex, elements, out);
        break;
    }
    return fxDone;
}
