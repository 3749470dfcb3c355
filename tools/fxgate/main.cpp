// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxgate: the tags of many PLCs on one message bus. Reads the command line, runs one command, and
// turns an error into lines and an exit code.

#include "tools/command_help.h"
#include "tools/fxgate/commands/commands.h"
#include "tools/standard_streams.h"

#include <QCoreApplication>
#include <QDebug>

#include <functional>

namespace {

using namespace fxgate;
using fxtools::ExitCode;

const char* const usualConfiguration = "/etc/fxgate/fxgate.toml";

const char* const footer = R"(Examples:
  fxgate check fxgate.toml
  fxgate run --config fxgate.toml
  fxgate status --watch
  fxgate reload

Exit status:
  0 success
  1 check, reload: the configuration has mistakes
  2 mistake on the command line
  7 error with a file; run: the configuration has mistakes; no gateway answers
  130 status --watch was interrupted

For the options of a command see fxgate COMMAND --help; for details see
man fxgate and man fxgate.toml.)";

struct Options
{
    std::string configuration = usualConfiguration;
    std::string socket;
    StatusOptions status;
};

using Action = std::function<ExitCode()>;

CLI::App* addCommand(CLI::App& app, const char* name, const char* help, Action& action,
                     const Action& run)
{
    CLI::App* const command = app.add_subcommand(name, help);
    command->callback([&action, run] { action = run; });
    command->group("Commands");
    return command;
}

void addSocket(CLI::App& command, Options& options)
{
    command
        .add_option("--socket", options.socket,
                    "Control socket of the gateway (default: see man fxgate)")
        ->type_name("PATH");
}

QString text(const std::string& option)
{
    return QString::fromStdString(option);
}

void addCommands(CLI::App& app, Options& options, Action& action)
{
    app.require_subcommand(1);
    CLI::App* const run =
        addCommand(app, "run", "Publish the tags of all links until stopped", action, [&options] {
            return fxgate::run(text(options.configuration), text(options.socket));
        });
    run->add_option("--config", options.configuration,
                    std::string("Configuration file (default: ") + usualConfiguration + ")")
        ->type_name("FILE");
    addSocket(*run, options);
    run->footer("Examples:\n  fxgate run --config fxgate.toml\n\n"
                "SIGHUP applies a changed configuration, as fxgate reload does.");

    CLI::App* const check =
        addCommand(app, "check", "Show the mistakes in a configuration and its tag files", action,
                   [&options] { return fxgate::check(text(options.configuration)); });
    check->add_option("file", options.configuration,
                      std::string("Configuration file (default: ") + usualConfiguration + ")");
    check->footer("Examples:\n  fxgate check fxgate.toml");

    CLI::App* const status =
        addCommand(app, "status", "Show the links and the bus of a running gateway", action,
                   [&options] { return showStatus(text(options.socket), options.status); });
    status->add_flag("--json", options.status.isJson, "Print JSON, for programs");
    status->add_flag("--watch", options.status.isWatched, "Update every second");
    addSocket(*status, options);
    status->footer("Examples:\n  fxgate status --watch\n  fxgate status --json");

    CLI::App* const reload =
        addCommand(app, "reload", "Apply the changed configuration to a running gateway", action,
                   [&options] { return askToReload(text(options.socket)); });
    addSocket(*reload, options);
    reload->footer("Examples:\n  fxgate reload\n\n"
                   "Only links and forms that changed are restarted; a configuration with "
                   "mistakes changes nothing.");
}

// Help and version are all that was asked for.
int textPrinted(int code)
{
    const std::string problem = fxtools::outputProblem();
    if (problem.empty())
        return code;
    complain(QString::fromStdString(problem));
    return static_cast<int>(ExitCode::File);
}

int runCommandLine(int argumentCount, char** arguments)
{
    Options options;
    Action action;
    CLI::App app("Publish the tags of FX-series programmable controllers on a message bus (MQTT)",
                 "fxgate");
    app.formatter(fxtools::helpFormatter());
    app.set_help_flag("-h,--help", "Print this help");
    app.option_defaults()->disable_flag_override();
    app.set_version_flag("-V,--version", "fxgate " FX_VERSION, "Print the version");
    app.footer(footer);
    addCommands(app, options, action);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return textPrinted(app.exit(error));  // help and version
        complain(fxtools::usageMistake(app, error));
        return static_cast<int>(ExitCode::Usage);
    }
    try {
        return static_cast<int>(action());
    } catch (const fxtools::Failure& failure) {
        complain(failure.text());
        return static_cast<int>(failure.code());
    }
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    fxtools::openClosedStreams();
    const QCoreApplication application(argumentCount, arguments);
    try {
        return runCommandLine(argumentCount, arguments);
    } catch (const std::exception& error) {
        qCritical("fxgate: %s", error.what());
        return static_cast<int>(ExitCode::SomeFailed);
    }
}
