// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Calls the host's value-change callback. A call may run the host's own code, which may read,
// write and queue: whoever notifies finds its areas again afterwards.

#ifndef CACHE_NOTIFICATION_H
#define CACHE_NOTIFICATION_H

#include "address/register_types.h"

// Calls the host back, when it has registered a callback.
void callHost(int linkNo, int stationNo, const QString& text, int value);

// Reports a change to the host when the element is monitored, creating its area if missing:
// a word or counter (isBitType 0), one bit (wholeByte 0), or those of the eight bits of a bit area
// that differ between `newBits` and `oldBits`. Nothing is compared in the first two forms, and
// nothing happens for an unknown type.
void _OnlyOneDataTypeDataChange(int stationNo, QString registerType, int address, int isBitType,
                                unsigned char newBits, unsigned char oldBits, int wholeByte);

// Reports one element in the form that its type takes.
void notifyElement(int stationNo, const RegisterType& type, int address);

#endif
