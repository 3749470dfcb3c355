// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host's only way to read PLC values: copies them out of the cache, never off the link.

#include "cache/data_areas.h"

#include <cstring>

namespace {

void copyBits(int stationNo, const RegisterType& type, int startIndex, int bitCount,
              unsigned char* out)
{
    for (int i = 0; i < bitCount; ++i) {
        const int address = startIndex + i;
        const _DATA_& area = driver.dataAreas.at(areaPosition(stationNo, type, address));
        out[i] = isBitSet(currentValue(area)[0], bitInArea(address)) ? 1 : 0;
    }
}

void copyValues(int stationNo, const RegisterType& type, int startIndex, int elements,
                unsigned char* out)
{
    const int elementBytes = valueBytes(type);
    for (int i = 0; i < elements; ++i, out += elementBytes) {
        const _DATA_& area = driver.dataAreas.at(areaPosition(stationNo, type, startIndex + i));
        std::memcpy(out, currentValue(area), static_cast<std::size_t>(elementBytes));
    }
}

}  // namespace

int intf_getData(int stationNo, QString registerType, int startIndex, int count, unsigned char* out)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr || out == nullptr)
        return 1;
    const int elements = servedElements(*type, startIndex, count);
    if (isBit(*type))
        copyBits(stationNo, *type, startIndex, elements, out);
    else
        copyValues(stationNo, *type, startIndex, elements, out);
    return 1;
}
