// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The addresses of a command, said in one of two ways: as texts such as D100:32, or by the letters
// that pollers have in common: -t D -r 100 -c 32, a type, a first number and how many.

#pragma once

#include "tools/fxhost/commands/command.h"
#include "tools/library/addresses.h"

namespace fxtools {

struct AddressOptions
{
    std::vector<std::string> addresses;
    std::string type;   // empty: D
    std::string first;  // as written, in the number base of the type; empty: not said by letters
    int registers = 0;  // 0: not said

    bool byLetters() const { return !type.empty() || !first.empty() || registers > 0; }
};

// Adds -t, -r and -c.
void addAddressLetters(CLI::App& command, AddressOptions& options);

// Adds these and the addresses as arguments.
void addAddressOptions(CLI::App& command, AddressOptions& options);

// What the letters say; throws Failure when they say only half of it.
AddressParts addressOfLetters(const AddressOptions& options);

// All that was asked for; throws Failure when that is nothing, or out of range.
QVector<RegisterRange> rangesOf(const AddressOptions& options, const RegisterCatalogue& catalogue);

}  // namespace fxtools
