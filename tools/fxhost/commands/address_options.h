// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The addresses of a command: as texts such as D100:32 or D0-D9, or by the options -t D -r 100 -c
// 32: type, first number and number of registers.

#pragma once

#include "tools/fxhost/commands/command.h"
#include "tools/library/addresses.h"

namespace fxtools {

struct AddressOptions
{
    std::vector<std::string> addresses;
    std::string type;   // empty: D
    std::string first;  // as written, in the number base of the type; empty: not given
    int registers = 0;  // 0: not given

    bool byLetters() const { return !type.empty() || !first.empty() || registers > 0; }
};

// Adds -t, -r and -c.
void addAddressLetters(CLI::App& command, AddressOptions& options);

// Adds these and the addresses as arguments.
void addAddressOptions(CLI::App& command, AddressOptions& options);

// The address given by options; throws Failure if -r is missing.
AddressParts addressOfLetters(const AddressOptions& options);

// All that was asked for; throws Failure if there is nothing or one is out of range.
QVector<AskedAddress> askedOf(const AddressOptions& options, const RegisterCatalogue& catalogue);

// The registers of it.
QVector<RegisterRange> rangesOf(const QVector<AskedAddress>& asked);
QVector<RegisterRange> rangesOf(const AddressOptions& options, const RegisterCatalogue& catalogue);

}  // namespace fxtools
