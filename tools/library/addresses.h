// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Addresses as people write them:
//
//   D100              one register             X17     octal, as on the terminal strip
//   D100:32           thirty-two of them       D0..D9  D0-D9   from the first to the last
//   32CV200           a 32-bit counter         T5  TV5         contact and value
//   D100.5            bit 5 of a word          K4M0            M0 to M15 as one number
//   2#D100            station 2                D1,D2           a list
//   M8000             the same as SM8000; D8000 as SD8000, CV200 as 32CV200
//
// The driver's own address services decide what is valid. This file only parses the text and puts
// their results into words.

#pragma once

#include "tools/library/registers.h"

#include <optional>

namespace fxtools {

// A parsed address. Whether the register exists is not known yet.
struct AddressParts
{
    QString written;  // for messages
    std::optional<int> station;
    int groupDigits = 0;  // 4 of K4M0: each stands for four bits
    QString type;         // "D"
    QString number;       // in the number base of the type
    std::optional<int> count;
    QString last;      // "9" of D0..D9
    QString lastType;  // "D"
    QString bit;       // "5" of D100.5
};

// What an address stands for.
struct AskedAddress
{
    RegisterRange range;     // of D100.5 the word, of K4M0 the bits
    std::optional<int> bit;  // of the word
    bool isGroup = false;    // the bits are one number
    bool isCounted = false;  // it says how many registers, if it is only 1

    QString nameOf(int index) const;  // as it was asked for
    QString text() const;
};

// All throw Failure with what is wrong and what to write instead.
AddressParts takeApart(const QString& text);
AskedAddress askedAddress(const AddressParts& parts, const RegisterCatalogue& catalogue);

// The registers of one address.
RegisterRange parseAddress(const QString& text, const RegisterCatalogue& catalogue);

// Whether a text has the form of addresses of known register types, whatever their numbers.
bool isAddress(const QString& text, const RegisterCatalogue& catalogue);

// "D0 to D7999", or "X0 to X377, in octal".
QString limitsText(const RegisterType& type);

}  // namespace fxtools
