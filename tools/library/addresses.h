// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Addresses as people write them:
//
//   D100        one register            X17         octal, as on the terminal strip
//   D100:32     thirty-two of them      32CV200     a 32-bit counter
//   T5  TV5     contact and value       2#D100      station 2
//   M8000       the same as SM8000; D8000 as SD8000, CV200 as 32CV200
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
    QString type;     // "D"
    QString number;   // in the number base of the type
    int station = 1;
    std::optional<int> count;  // nothing: not given, which means 1
};

// Both throw Failure with what is wrong and what to write instead.
AddressParts takeApart(const QString& text);
RegisterRange rangeOf(const AddressParts& parts, const RegisterCatalogue& catalogue);

RegisterRange parseAddress(const QString& text, const RegisterCatalogue& catalogue);

// Whether a text has the form of an address and a known register type, whatever its number.
bool isAddress(const QString& text, const RegisterCatalogue& catalogue);

// "D0 to D7999 in decimal".
QString limitsText(const RegisterType& type);

}  // namespace fxtools
