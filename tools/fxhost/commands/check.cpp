// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost check: asks the driver's own address services whether addresses are valid.

#include "tools/fxhost/commands/connection.h"
#include "tools/library/addresses.h"

namespace fxtools {

namespace {

using Addresses = std::vector<std::string>;

ExitCode runCheck(const CommonOptions& common, const Addresses& addresses)
{
    const AddressServices services(common);
    Records records(common.output, {{"address"}, {"valid"}, {"meaning"}});
    bool allValid = true;
    for (const std::string& address : addresses) {
        const QString text = QString::fromStdString(address);
        try {
            const RegisterRange range = parseAddress(text, services.catalogue);
            const QString what = QStringLiteral("%1 of station %2, %3")
                                     .arg(range.text().section('#', -1))
                                     .arg(range.station)
                                     .arg(widthText(range.type.width));
            records.add({text, true, what});
        } catch (const Failure& failure) {
            allValid = false;
            records.add({text, false, failure.text()});
        }
    }
    records.finish();
    return allValid ? ExitCode::Good : ExitCode::SomeFailed;
}

}  // namespace

void addCheckCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("check", "Print whether addresses are valid and what they mean");
    const auto addresses = std::make_shared<Addresses>();
    command->add_option("address", *addresses, "Addresses, such as D100, X17 or M8000")
        ->type_name("")
        ->required();
    addExamples(*command, {"fxhost check D100 X17 M8000 2#TV5 CV200"});
    command->callback([&action, &common, addresses] {
        action = [&common, addresses] { return runCheck(common, *addresses); };
    });
}

}  // namespace fxtools
