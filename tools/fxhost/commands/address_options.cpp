// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/address_options.h"

namespace fxtools {

namespace {

const char* const letterGroup = "Address by options";
const QString defaultType = QStringLiteral("D");

}  // namespace

void addAddressLetters(CLI::App& command, AddressOptions& options)
{
    command.add_option("-t,--type", options.type, "Register type: X, M, TV, ... (default: D)")
        ->type_name("TYPE")
        ->group(letterGroup);
    command
        .add_option("-r,--first", options.first,
                    "Number of the first register as in its address: 100 for D100")
        ->type_name("NUMBER")
        ->group(letterGroup);
    command.add_option("-c,--registers", options.registers, "Number of registers (default: 1)")
        ->type_name("N")
        ->check(within({1, fxMaxElements}))
        ->group(letterGroup);
}

void addAddressOptions(CLI::App& command, AddressOptions& options)
{
    command.add_option("address", options.addresses, "Addresses, such as D100:32, D0-D9 or X17");
    addAddressLetters(command, options);
}

AddressParts addressOfLetters(const AddressOptions& options)
{
    const QString type = QString::fromStdString(options.type).toUpper();
    if (options.first.empty() && options.registers > 0)
        throw Failure(ExitCode::Usage,
                      "-c needs -r, the number of the first register: -r 100 -c 8, or D100:8");
    if (options.first.empty())
        throw Failure(ExitCode::Usage,
                      QStringLiteral("-t needs -r, the number of the first register: -t %1 -r 100")
                          .arg(type));
    AddressParts parts;
    parts.type = type.isEmpty() ? defaultType : type;
    parts.number = QString::fromStdString(options.first);
    parts.written = parts.type + parts.number;
    if (options.registers > 0)
        parts.count = options.registers;
    return parts;
}

QVector<AskedAddress> askedOf(const AddressOptions& options, const RegisterCatalogue& catalogue)
{
    QVector<AskedAddress> asked;
    for (const std::string& address : options.addresses)
        asked += askedAddresses(QString::fromStdString(address), catalogue);
    if (options.byLetters())
        asked.append(askedAddress(addressOfLetters(options), catalogue));
    if (asked.isEmpty())
        throw Failure(ExitCode::Usage,
                      "address missing; for example D100:32, or -t D -r 100 -c 32");
    return asked;
}

QVector<RegisterRange> rangesOf(const QVector<AskedAddress>& asked)
{
    QVector<RegisterRange> ranges;
    for (const AskedAddress& address : asked)
        ranges.append(address.range);
    return ranges;
}

QVector<RegisterRange> rangesOf(const AddressOptions& options, const RegisterCatalogue& catalogue)
{
    return rangesOf(askedOf(options, catalogue));
}

}  // namespace fxtools
