// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The devices of the PLC by the names that its programmers use (X17, M0, D100, 32CV200), and where
// they lie in its memory. Only the bench speaks of devices: scripts, commands, the options of the
// memory and the live view. Frames carry addresses.

#pragma once

#include "tools/fxsim/plc/plc_memory.h"

#include <QString>

#include <optional>

namespace fxsim {

struct DeviceType
{
    const char* name;
    int base;  // of the number in the name: X and Y are octal
    int first;
    int last;
    int bits;     // 1, 16 or 32
    int address;  // of the byte where the first one starts

    int byteCount() const { return bits / 8; }  // 0: a bit
};

struct Device
{
    const DeviceType* type = nullptr;
    int number = 0;

    QString name() const;
    int address() const;  // of its lowest byte, or of the byte with its bit
    int bit() const;      // within that byte
    int room() const { return type->last - number + 1; }  // devices from this one to the last
    Device next(int steps) const { return {type, number + steps}; }
};

// Nothing when the text is no device name at all, as 0x1000; an Error when it looks like one, but
// there is no such type or number.
std::optional<Device> parseDevice(const QString& text);

Device device(const char* name);  // one that is known to exist

qint64 valueOf(const PlcMemory& memory, const Device& device);  // words and counters are signed

}  // namespace fxsim
