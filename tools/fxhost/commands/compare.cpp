// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost compare: shows where the PLC holds other values than a file.

#include "tools/fxhost/commands/file_comparison.h"

namespace fxtools {

namespace {

ExitCode runCompare(const CommonOptions& common, const std::string& file)
{
    Connection connection(common);
    const QString path = QString::fromStdString(file);
    const Comparison comparison = compareWithPlc(connection, registersOf(path, connection).runs,
                                                 lateProgressOf(common.output, "compare"));
    if (comparison.problem) {
        complain(path + ": not compared to the end: " + verdictText(*comparison.problem));
        return exitCodeOf(*comparison.problem);
    }
    const int different = comparison.different() + comparison.refused();
    if (different > 0 || common.output.mode != OutputMode::People)
        showDifferences(comparison, common.output);
    else if (!common.output.quiet)
        Console().line("  " + path + ": no difference in " +
                       counted(comparison.registers.size(), "register"));
    return different == 0 ? ExitCode::Good : ExitCode::SomeFailed;
}

}  // namespace

void addCompareCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("compare", "Show where the PLC differs from a file of registers");
    const auto file = std::make_shared<std::string>();
    command->add_option("file", *file, "CSV file written by dump or backup")->required();
    addExamples(*command, {"fxhost dump plc.csv D100:512 M64:64", "fxhost compare plc.csv"});
    onRun(*command, action, [&common, file] { return runCompare(common, *file); });
}

}  // namespace fxtools
