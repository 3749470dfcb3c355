// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost: the reference host and poller of the driver. Reads the command line, runs one command,
// and turns an error into one line and an exit code.

#include "tools/fxhost/commands/command.h"
#include "tools/fxhost/views/console.h"
#include "tools/link/interrupt.h"

#include <QCoreApplication>
#include <QDebug>

#include <iostream>

namespace {

using namespace fxtools;

const char* const footer = R"(Examples:
  fxhost read D0:4 X0:8 32CV200
  fxhost write D100=5 M100=on D20=3.14 --verify
  fxhost watch D0:4 TV0 --count 3 --interval 200
  fxhost read --link 'sim:?baud=9600' -t D -r 100 -c 8 --json

For the options of a command see fxhost COMMAND --help; for details see man fxhost.)";

// Output that could not be written is an error, whatever the command's own result.
int outputWritten(int code)
{
    Console::settle();
    std::cout.flush();
    if (std::cout.good() || code == static_cast<int>(ExitCode::File))  // already told
        return code;
    complain(QStringLiteral("could not write all output"));
    return static_cast<int>(ExitCode::File);
}

int runAction(const Action& action)
{
    try {
        return static_cast<int>(action());
    } catch (const Failure& failure) {
        complain(failure.text());
        return static_cast<int>(failure.code());
    }
}

// What to do next when not one reply was good.
void pointToDoctor(int code, const CLI::App& app, const OutputOptions& output)
{
    const bool noGoodAnswer =
        code == static_cast<int>(ExitCode::Silence) || code == static_cast<int>(ExitCode::Damaged);
    if (noGoodAnswer && output.mode == OutputMode::People && !output.quiet &&
        !app.got_subcommand("doctor"))
        complain(
            QStringLiteral("no valid reply; to find out why, run fxhost doctor with this link"));
}

void addCommands(CLI::App& app, CommonOptions& common, Action& action)
{
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--library", common.library,
                   "Driver library (default: FX_DRIVER, or a library near the program)")
        ->type_name("FILE");
    addLinkOptions(app, common);
    addOutputOptions(app, common);
    addTypesCommand(app, common, action);
    addCheckCommand(app, common, action);
    addSeriesCommand(app, common, action);
    addPlanCommand(app, common, action);
    addReadCommand(app, common, action);
    addWriteCommand(app, common, action);
    addWatchCommand(app, common, action);
    addLogCommand(app, common, action);
    addRecipeCommand(app, common, action);
    addDumpCommand(app, common, action);
    addRestoreCommand(app, common, action);
    addMonitorCommand(app, common, action);
    addStatsCommand(app, common, action);
    addRecordCommand(app, common, action);
    addReplayCommand(app, common, action);
    addDoctorCommand(app, common, action);
    addDemoCommand(app, common, action);
}

int runCommandLine(int argumentCount, char** arguments)
{
    CommonOptions common;
    Action action;
    CLI::App app("Reference host and poller for FX-series programmable controllers", "fxhost");
    app.set_version_flag("--version", "fxhost " FX_VERSION);
    app.set_help_all_flag("--help-all", "Print the help of every command and exit");
    app.footer(footer);
    addCommands(app, common, action);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return outputWritten(app.exit(error));  // help and version
        complain(QString::fromStdString(error.what()).simplified() + "; see fxhost --help");
        return static_cast<int>(ExitCode::Usage);
    }
    chooseLink(common);
    catchSignals();
    const int code = runAction(action);
    pointToDoctor(code, app, common.output);
    return outputWritten(code);
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    const QCoreApplication application(argumentCount, arguments);
    try {
        return runCommandLine(argumentCount, arguments);
    } catch (const std::exception& error) {
        qCritical("fxhost: %s", error.what());
        return static_cast<int>(ExitCode::SomeFailed);
    }
}
