// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The register types as the driver describes them, and ranges of registers with their texts.
// Everything that is known here about a type comes from the address services of the driver.

#pragma once

#include "tools/library/driver_library.h"

#include <QVector>

namespace fxtools {

enum class RegisterWidth
{
    Bit = 0,
    Word = 1,
    DoubleWord = 2,
};

constexpr int bitsPerByte = 8;

QString widthText(RegisterWidth width);  // "bit", "16 bits", "32 bits"

struct RegisterType
{
    QString name;
    RegisterWidth width = RegisterWidth::Word;
    int numberBase = 10;
    int lowest = 0;
    int highest = 0;
    bool writable = false;

    bool isBit() const { return width == RegisterWidth::Bit; }
    int registers() const { return highest - lowest + 1; }
    int valueBytes() const;                    // of one value in the buffers of the driver
    int driverCount(int count) const;          // what intf_getData and intf_setData call `count`
    int mostInFrame(int wordsPerFrame) const;  // registers whose values fit in one frame
    QString numberText(int number) const;
};

// `count` registers of one type and station, the first of them `first`.
struct RegisterRange
{
    RegisterType type;
    int station = 1;
    int first = 0;
    int count = 1;

    RegisterRange part(int offset, int partCount) const;
    QVector<RegisterRange> cut(int mostRegisters) const;  // into parts; the last may be shorter
    QString nameOf(int index) const;  // "D100"; "2#D100" if the station is not 1
    QString text() const;             // "D100" or "D100:32"
};

class RegisterCatalogue
{
public:
    explicit RegisterCatalogue(const DriverLibrary& library);  // which outlives it

    const DriverLibrary& library() const { return m_library; }
    const QVector<RegisterType>& all() const { return m_types; }
    const RegisterType* find(const QString& name) const;

private:
    const DriverLibrary& m_library;
    QVector<RegisterType> m_types;
};

// Cut to parts whose values fit one frame, counters of two words included.
QVector<RegisterRange> cutToFrames(const QVector<RegisterRange>& ranges, int wordsPerFrame);

// The range as a key for the plan.
KEY_ADDRESS planKey(const RegisterRange& range);

}  // namespace fxtools
