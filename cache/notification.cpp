// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The three forms of a change notification.

#include "cache/notification.h"

#include "cache/data_areas.h"
#include "driver/integers.h"

namespace {

void notifyWord(int stationNo, const QString& registerType, int address)
{
    if (isBitSet(AreaFinder(stationNo, registerType).area(address).monitorFlags, 0))
        callHost(driver.linkNo, stationNo, registerType, address);
}

void notifyBit(int stationNo, const QString& registerType, int address)
{
    const int marks = AreaFinder(stationNo, registerType).area(bitAreaStart(address)).changeFlags;
    if (isBitSet(marks, bitInArea(address)))
        callHost(driver.linkNo, stationNo, registerType, address);
}

void notifyByte(int stationNo, const QString& registerType, int address, int changedBits)
{
    const int marks = AreaFinder(stationNo, registerType).area(bitAreaStart(address)).changeFlags;
    for (int bit = 0; bit < bitsPerArea && bit < intsFrom(address); ++bit) {
        if (isBitSet(marks & changedBits, bit))
            callHost(driver.linkNo, stationNo, registerType, address + bit);
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
    if (findRegisterType(registerType) == nullptr)
        return;
    if (isBitType == 0)
        notifyWord(stationNo, registerType, address);
    else if (wholeByte == 0)
        notifyBit(stationNo, registerType, address);
    else
        notifyByte(stationNo, registerType, address, newBits ^ oldBits);
}

void notifyElement(int stationNo, const RegisterType& type, int address)
{
    if (isBit(type))
        notifyBit(stationNo, registerTypeName(type), address);
    else
        notifyWord(stationNo, registerTypeName(type), address);
}
