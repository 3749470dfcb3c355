// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost help.

#include "tools/fxhost/commands/command.h"

#include <iostream>
#include <memory>

namespace fxtools {

namespace {

void printHelp(const CLI::App& app, const std::vector<std::string>& names)
{
    const CLI::App* command = &app;
    for (const std::string& name : names) {
        const std::vector<const CLI::App*> found = command->get_subcommands(
            [&name](const CLI::App* inner) { return inner->get_name() == name; });
        if (found.empty())
            throw Failure(ExitCode::Usage, unknownWord(*command, QString::fromStdString(name)));
        command = found.front();
    }
    // Not help() of the program, which would be that of the command `help` that was parsed.
    std::cout << app.get_formatter()->make_help(command, helpOf(*command).toStdString(),
                                                CLI::AppFormatMode::Normal);
}

}  // namespace

void addHelpCommand(CLI::App& app, const CommonOptions& /*common*/, Action& action)
{
    CLI::App* command = app.add_subcommand("help", "Print the help of fxhost or of a command");
    const auto names = std::make_shared<std::vector<std::string>>();
    command->add_option("command", *names, "The command, such as read or recipe upload");
    addExamples(*command, {"fxhost help", "fxhost help read"});
    onRun(*command, action, [&app, names] {
        printHelp(app, *names);
        return ExitCode::Good;
    });
}

}  // namespace fxtools
