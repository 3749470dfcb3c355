// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The addresses of a command: as texts such as D100:32 or D0-D9, or by the options -t D -r 100 -c
// 32: type, first number and number of registers. With a tag file names take the place of
// addresses.

#pragma once

#include "tools/fxhost/commands/connection.h"
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

// A tag without a name for one address, or for each of its values.
Tag untagged(const AskedAddress& asked, ValueStyle style);

// Whether this means tags: there is a tag file, and it is no address.
bool isTagName(const QString& text, const AddressServices& services);

// The tag of this name, or those that a shell pattern stands for. Throws Failure if there are none.
QVector<Tag> tagsNamed(const QString& name, const AddressServices& services);

// All that was asked for, by address, name or pattern. Throws Failure if there is nothing, one is
// out of range or unknown, or a value would reach past the end of its range.
QVector<Tag> askedOf(const AddressOptions& options, const AddressServices& services,
                     ValueStyle style = {});

// The tag's name, or the address as it was asked for.
QString askedName(const Tag& asked);

// The registers of what was asked for.
QVector<RegisterRange> rangesOf(const QVector<Tag>& asked);
QVector<RegisterRange> rangesOf(const AddressOptions& options, const AddressServices& services);

// The same for a file: each register once, and for itself.
QVector<RegisterRange> registersOnce(const AddressOptions& options,
                                     const AddressServices& services);

// One address, or that of one tag. Throws Failure.
AskedAddress addressIn(const QString& text, const AddressServices& services);

// A write, and how its values are shown.
struct TagWrite : Assignment
{
    Tag tag;
};

// "D100=5", or with the name of a tag "boiler.setpoint=71.5". Throws Failure.
TagWrite parseWrite(const QString& text, const AddressServices& services, ValueStyle style);

}  // namespace fxtools
