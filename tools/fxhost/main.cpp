// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost: the reference host and poller of the driver. Reads the command line, runs one command,
// and turns an error into one line and an exit code.

#include "tools/fxhost/commands/command.h"
#include "tools/fxhost/views/console.h"
#include "tools/link/interrupt.h"
#include "tools/quoted.h"
#include "tools/standard_streams.h"

#include <QCoreApplication>
#include <QDebug>

namespace {

using namespace fxtools;

const char* const plcGroup = "Commands";
const char* const offlineGroup = "Commands that need no PLC";

const char* const footer = R"(Examples:
  fxhost read D0:4 X0:8 32CV200
  fxhost write --link sim: D100=5 M100=on D10:2=-1,0x1F
  fxhost watch D0:4 TV0 --count 3 --interval 200
  fxhost read --link 'sim:?baud=9600' -t D -r 100 -c 8 --json

Exit status:
  0 success                          4 no reply
  1 some failed, or values differ    5 refused by the PLC (NAK)
  2 mistake on the command line      6 damaged replies
  3 link not opened or lost          7 error with a file, library or output
  130 interrupted

For the options of a command see fxhost COMMAND --help; for details see
man fxhost.)";

// Output that could not be written is an error, whatever the command's own result.
int outputWritten(int code)
{
    Console::settle();
    const std::string problem = outputProblem();
    if (problem.empty() || code == static_cast<int>(ExitCode::File))  // already told
        return code;
    complain(QString::fromStdString(problem));
    return static_cast<int>(ExitCode::File);
}

// Which PLC a command talks to stands in every record that it prints as JSON.
QVector<JsonMember> plcMembers(const CommonOptions& common)
{
    LinkSettings link = common.link.settings(SimulatedSettings());
    return {{QStringLiteral("link"), jsonText(linkText(link))},
            {QStringLiteral("station"), jsonText(plcSettings(link).station)}};
}

int runAction(const CLI::App& app, CommonOptions& common, const Action& action)
{
    try {
        chooseLink(common);
        if (app.get_subcommands().front()->get_group() == plcGroup)
            common.output.plc = plcMembers(common);
        return static_cast<int>(action());
    } catch (const Failure& failure) {
        complain(failure.text());
        return static_cast<int>(failure.code());
    }
}

// What to do next when not one reply was good.
void pointToDoctor(int code, const CLI::App& app, const CommonOptions& common)
{
    const OutputOptions& output = common.output;
    const bool noGoodAnswer =
        code == static_cast<int>(ExitCode::Silence) || code == static_cast<int>(ExitCode::Damaged);
    if (noGoodAnswer && output.mode == OutputMode::People && !output.quiet &&
        !app.got_subcommand("doctor"))
        complain("no valid reply; to find out why, run fxhost doctor --link '" +
                 linkText(common.link.settings(SimulatedSettings())) + "'");
}

void addCommands(CLI::App& app, CommonOptions& common, Action& action)
{
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--library", common.library,
                   "Driver library (default: FX_DRIVER, or the one installed with fxhost)")
        ->type_name("FILE");
    addLinkOptions(app, common);
    addOutputOptions(app, common);
    for (const auto add :
         {addReadCommand, addWriteCommand, addWatchCommand, addLogCommand, addServeCommand,
          addRecipeCommand, addDumpCommand, addBackupCommand, addRestoreCommand, addCompareCommand,
          addMonitorCommand, addStatsCommand, addRecordCommand, addDoctorCommand, addDemoCommand})
        add(app, common, action);
    for (CLI::App* const command : app.get_subcommands({}))
        command->group(plcGroup);
    for (const auto add : {addTypesCommand, addCheckCommand, addSeriesCommand, addPlanCommand,
                           addTagsCommand, addReplayCommand, addPortsCommand, addHelpCommand})
        add(app, common, action);
    for (CLI::App* const command : app.get_subcommands({})) {
        if (command->get_group() != plcGroup)
            command->group(offlineGroup);
        for (CLI::App* const inner : command->get_subcommands({}))
            inner->group(plcGroup);
    }
}

// A name that is not text in UTF-8 would become that of another file.
void requireText(int argumentCount, char** arguments)
{
    for (int number = 1; number < argumentCount; ++number) {
        const QByteArray argument = arguments[number];
        const QString text = QString::fromUtf8(argument);
        if (text.toUtf8() != argument)
            throw Failure(
                ExitCode::Usage,
                QStringLiteral("argument %1 is not UTF-8: %2").arg(number).arg(quoted(text)));
    }
}

int runCommandLine(int argumentCount, char** arguments)
{
    CommonOptions common;
    Action action;
    CLI::App app("Read, write and watch FX-series programmable controllers", "fxhost");
    app.formatter(helpFormatter());
    app.set_help_flag("-h,--help", "Print this help");
    app.option_defaults()->disable_flag_override();
    addCommands(app, common, action);
    app.set_help_all_flag("--help-all", "Print the help of every command");
    app.set_version_flag("-V,--version", "fxhost " FX_VERSION, "Print the version");
    app.footer(footer);
    try {
        requireText(argumentCount, arguments);
        app.parse(argumentCount, arguments);
    } catch (const Failure& failure) {
        complain(failure.text());
        return static_cast<int>(failure.code());
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return outputWritten(app.exit(error));  // help and version
        complain(usageMistake(app, error));
        return static_cast<int>(ExitCode::Usage);
    }
    catchSignals();
    const int code = runAction(app, common, action);
    pointToDoctor(code, app, common);
    return outputWritten(code);
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    fxtools::openClosedStreams();
    const QCoreApplication application(argumentCount, arguments);
    try {
        return runCommandLine(argumentCount, arguments);
    } catch (const std::exception& error) {
        qCritical("fxhost: %s", error.what());
        return static_cast<int>(ExitCode::SomeFailed);
    }
}
