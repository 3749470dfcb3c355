// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The register types as the driver describes them, and ranges of registers with their texts.
// Everything that is known here about a type comes from the address services of the driver.

#pragma once

#include "tools/library/driver_library.h"

#include <QVector>

#include <optional>

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
    int readBase = 0;   // the address on the wire of the lowest one: of its byte
    int writeBase = 0;  // the same for writing: of its byte, or of a bit itself

    bool isBit() const { return width == RegisterWidth::Bit; }
    int registers() const { return highest - lowest + 1; }
    int valueBytes() const;                    // of one value in the buffers of the driver
    int driverCount(int count) const;          // what intf_getData and intf_setData call `count`
    int mostInFrame(int wordsPerFrame) const;  // registers whose values fit in one frame
    QString numberText(int number) const;
    int readAddress(int number) const;
    int writeAddress(int number) const;
};

// `count` registers of one type and station, the first of them `first`.
struct RegisterRange
{
    RegisterType type;
    int station = 1;
    int first = 0;
    int count = 1;
    QString askedType = {};  // the other name of the type that was asked for: "D" of D8000
    int together = 1;        // so many neighbours are one value, which one reply should bring

    RegisterRange part(int offset, int partCount) const;
    QVector<RegisterRange> cut(int mostRegisters) const;  // into parts; the last may be shorter
    int mostInFrame(int wordsPerFrame) const;             // registers, of whole values if one fits
    QString nameOf(int index) const;    // as asked: "D100"; "2#D100" if the station is not 1
    QString identity(int index) const;  // the same for D8000 and SD8000, whichever was asked for
    bool isContinuedBy(const RegisterRange& next) const;
    QString text() const;  // "D100" or "D100:32"

    // Why a read does not show what was written: "SD8000 is written at 0x0F00 on the wire, but read
    // at 0x0E00". Empty if it does.
    QString readElsewhereText() const;
};

// An address on the wire: "0x0E00".
QString wireText(int address);

// Registers that a write would hit instead of others, because their addresses on the wire are the
// same: those of the type whose addresses begin there are meant.
struct Alias
{
    RegisterRange asked;
    RegisterRange hit;

    QString text() const;
};

class RegisterCatalogue
{
public:
    // The library outlives it. Make it before a session: it asks the driver for a frame or two of
    // each type to learn the addresses on the wire, and leaves the driver empty. With a station of
    // its own only registers of this one can be asked for: no frame carries a station.
    explicit RegisterCatalogue(const DriverLibrary& library,
                               std::optional<int> ownStation = std::nullopt);

    const DriverLibrary& library() const { return m_library; }
    std::optional<int> ownStation() const { return m_ownStation; }
    const QVector<RegisterType>& all() const { return m_types; }
    const RegisterType* find(const QString& name) const;

    // The first registers of a range that are not their own.
    std::optional<Alias> aliasIn(const RegisterRange& range) const;

private:
    const DriverLibrary& m_library;
    std::optional<int> m_ownStation;
    QVector<RegisterType> m_types;
};

// Cut to parts whose values fit one frame, counters of two words included.
QVector<RegisterRange> cutToFrames(const QVector<RegisterRange>& ranges, int wordsPerFrame);

// The range as a key for the plan.
KEY_ADDRESS planKey(const RegisterRange& range);

}  // namespace fxtools
