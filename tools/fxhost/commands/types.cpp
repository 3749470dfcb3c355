// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost types: the register types, as the driver describes them.

#include "tools/fxhost/commands/connection.h"

namespace fxtools {

namespace {

ExitCode runTypes(const CommonOptions& common)
{
    const AddressServices services(common);
    Records records(common.output, {{"type"},
                                    {"lowest", Align::Right},
                                    {"highest", Align::Right},
                                    {"base", Align::Right},
                                    {"width"},
                                    {"writable"}});
    for (const RegisterType& type : services.catalogue.all()) {
        records.add({type.name, type.numberText(type.lowest), type.numberText(type.highest),
                     type.numberBase, widthText(type.width), type.writable});
    }
    records.finish();
    return ExitCode::Good;
}

}  // namespace

void addTypesCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("types", "Print the register types");
    addExamples(*command, {"fxhost types", "fxhost types --json"});
    onRun(*command, action, [&common] { return runTypes(common); });
}

}  // namespace fxtools
