// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost: the reference host and poller of the driver. Reads the command line, runs one command,
// and turns what went wrong into one line and an exit code.

#include "host/addresses.h"
#include "host/commands/command.h"
#include "host/driver_library.h"
#include "host/interrupt.h"
#include "host/link_address.h"
#include "host/register_file.h"
#include "host/values.h"

#include <QCoreApplication>
#include <QDebug>

#include <iostream>

namespace {

using namespace fxhost;

int complain(const std::exception& error, ExitCode code)
{
    std::cerr << "fxhost: " << error.what() << '\n';
    return static_cast<int>(code);
}

int runAction(const Action& action)
{
    try {
        return static_cast<int>(action());
    } catch (const AddressError& error) {
        return complain(error, ExitCode::Usage);
    } catch (const ValueError& error) {
        return complain(error, ExitCode::Usage);
    } catch (const UsageError& error) {
        return complain(error, ExitCode::Usage);
    } catch (const LinkAddressError& error) {
        return complain(error, ExitCode::Usage);
    } catch (const LinkError& error) {
        return complain(error, ExitCode::LinkNotOpened);
    } catch (const LibraryError& error) {
        return complain(error, ExitCode::File);
    } catch (const FileError& error) {
        return complain(error, ExitCode::File);
    }
}

void addLinkOptions(CLI::App& app, CommonOptions& common)
{
    app.add_option("--link", common.link,
                   "sim: (the default), serial:PATH?baud=9600, tcp:HOST:PORT or pty:PATH")
        ->group("Link");
    app.add_option("-b,--baud", common.baud, "Speed of a serial port, or of the simulator inside")
        ->check(CLI::Range(50, 4000000))
        ->group("Link");
    app.add_option("--line", common.line, "Data bits, parity and stop bits of a serial port: 7E1")
        ->group("Link");
    app.add_option("-o,--timeout", common.timeoutMs,
                   "Milliseconds to wait for an answer; without it the time adapts to the line")
        ->check(CLI::Range(1, 60000))
        ->group("Link");
    app.add_option("--retries", common.retries, "How often a frame is sent again")
        ->capture_default_str()
        ->check(CLI::Range(0, 100))
        ->group("Link");
    app.add_option("--words", common.wordsPerFrame, "Words in one frame")
        ->capture_default_str()
        ->check(CLI::Range(1, 253))
        ->group("Link");
}

void addOutputOptions(CLI::App& app, CommonOptions& common)
{
    OutputOptions& output = common.output;
    app.add_flag_callback(
           "--json", [&output] { output.mode = OutputMode::Json; }, "JSON")
        ->group("Output");
    app.add_flag_callback(
           "--csv", [&output] { output.mode = OutputMode::Csv; }, "CSV")
        ->group("Output");
    app.add_flag("--timestamps", output.timestamps, "The time in front of everything")
        ->group("Output");
    app.add_flag("-q,--quiet", output.quiet, "No titles and no closing words")->group("Output");
}

void addCommands(CLI::App& app, CommonOptions& common, Action& action)
{
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--library", common.library, "The driver library; else FX_DRIVER or nearby");
    addLinkOptions(app, common);
    addOutputOptions(app, common);
    addTypesCommand(app, common, action);
    addCheckCommand(app, common, action);
    addSeriesCommand(app, common, action);
    addPlanCommand(app, common, action);
    addReadCommand(app, common, action);
    addWriteCommand(app, common, action);
    addWatchCommand(app, common, action);
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
    addCommands(app, common, action);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : static_cast<int>(ExitCode::Usage);
    }
    catchInterrupts();
    return runAction(action);
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
