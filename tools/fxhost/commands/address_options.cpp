// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See address_options.h.

#include "tools/fxhost/commands/address_options.h"

namespace fxtools {

namespace {

constexpr int mostRegisters = 65536;
const char* const letterGroup = "Addresses by letters";
const char* const defaultType = "D";

}  // namespace

void addAddressLetters(CLI::App& command, AddressOptions& options)
{
    command.add_option("-t,--type", options.type, "Register type: D unless said, X, M, TV, ...")
        ->type_name("TYPE")
        ->group(letterGroup);
    command
        .add_option("-r,--first", options.first, "First register, as in its address: 100 of D100")
        ->type_name("NUMBER")
        ->group(letterGroup);
    command.add_option("-c,--registers", options.registers, "How many registers from there; 1")
        ->type_name("N")
        ->check(CLI::Range(1, mostRegisters).description(""))
        ->group(letterGroup);
    command.add_flag("-0,--from-zero", "Numbers begin at 0: here they always do")
        ->group(letterGroup);
}

void addAddressOptions(CLI::App& command, AddressOptions& options)
{
    command.add_option("address", options.addresses, "Addresses such as D100:32, X17 or 2#M8")
        ->type_name("");
    addAddressLetters(command, options);
}

std::string addressOfLetters(const AddressOptions& options)
{
    if (options.first.empty() && options.registers > 0)
        throw Failure(ExitCode::Usage,
                      "-c counts the registers from -r on, and there is no -r; write for "
                      "example -r 100 -c 8 or D100:8");
    if (options.first.empty())
        throw Failure(ExitCode::Usage, QStringLiteral("-t needs the first register: -t %1 -r 100")
                                           .arg(QString::fromStdString(options.type)));
    const std::string type = options.type.empty() ? defaultType : options.type;
    const std::string address = type + options.first;
    return options.registers > 0 ? address + ':' + std::to_string(options.registers) : address;
}

std::vector<std::string> addressesOf(const AddressOptions& options)
{
    std::vector<std::string> addresses = options.addresses;
    if (options.byLetters() || options.registers > 0 || !options.type.empty())
        addresses.push_back(addressOfLetters(options));
    if (addresses.empty())
        throw Failure(ExitCode::Usage,
                      "no address; write for example D100:32, or -t D -r 100 -c 32");
    return addresses;
}

}  // namespace fxtools
