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
// The driver's own address services decide what is valid; here only the text is taken apart and
// their answers are put into words.

#pragma once

#include "tools/library/registers.h"

#include <stdexcept>

namespace fxtools {

// What is wrong with an address and what would be right, in one line.
class AddressError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Throws AddressError.
RegisterRange parseAddress(const QString& text, const RegisterCatalogue& catalogue,
                           const DriverLibrary& library);

// "D0 to D7999 in decimal".
QString limitsText(const RegisterType& type);

}  // namespace fxtools
