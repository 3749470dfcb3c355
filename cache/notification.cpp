// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The three forms of a change notification.

#include "cache/notification.h"

#include "cache/data_areas.h"
#include "driver/integers.h"

namespace {

void notifyWord(int stationNo, const RegisterType& type, int address)
{
    if (isBitSet(AreaFinder(stationNo, type).area(address).monitorFlags, 0))
        callHost(driver.linkNo, stationNo, registerTypeName(type), address);
}

void notifyBit(int stationNo, const RegisterType& type, int address)
{
    const int marks = AreaFinder(stationNo, type).area(bitAreaStart(address)).changeFlags;
    if (isBitSet(marks, bitInArea(address)))
        callHost(driver.linkNo, stationNo, registerTypeName(type), address);
}

void notifyByte(int stationNo, const RegisterType& type, int address, int changedBits)
{
    const int marks = AreaFinder(stationNo, type).area(bitAreaStart(address)).changeFlags;
    for (int bit = 0; bit < bitsPerArea && bit < intsFrom(address); ++bit) {
        if (isBitSet(marks & changedBits, bit))
            callHost(driver.linkNo, stationNo, registerTypeName(type), address + bit);
    }
}

}  // namespace

void callHost(int linkNo, int stationNo, const QString& text, int value)
{
    if (driver.valueChangeCallback == nullptr)
        return;
    QString textForHost = text;  // the host may write to it
    driver.valueChangeCallback(linkNo, stationNo, textForHost, value);
}

void _OnlyOneDataTypeDataChange(int stationNo, QString registerType, int address, int isBitType,
                                unsigned char newBits, unsigned char oldBits, int wholeByte)
{
    const RegisterType* type = findRegisterType(registerType);
    if (type == nullptr)
        return;
    if (isBitType == 0)
        notifyWord(stationNo, *type, address);
    else if (wholeByte == 0)
        notifyBit(stationNo, *type, address);
    else
        notifyByte(stationNo, *type, address, newBits ^ oldBits);
}

void notifyElement(int stationNo, const RegisterType& type, int address)
{
    if (isBit(type))
        notifyBit(stationNo, type, address);
    else
        notifyWord(stationNo, type, address);
}
