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

#include <QCoreApplication>

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
    } catch (const LinkAddressError& error) {
        return complain(error, ExitCode::Usage);
    } catch (const LinkError& error) {
        return complain(error, ExitCode::LinkNotOpened);
    } catch (const LibraryError& error) {
        return complain(error, ExitCode::File);
    }
}

void addCommands(CLI::App& app, CommonOptions& common, Action& action)
{
    app.require_subcommand(1);
    app.add_option("--library", common.library, "The driver library; else FX_DRIVER or nearby");
    app.add_option("--link", common.link,
                   "sim: (the default), serial:PATH?baud=9600, tcp:HOST:PORT or pty:PATH");
    app.fallthrough();
    addDemoCommand(app, common, action);
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    const QCoreApplication application(argumentCount, arguments);
    CommonOptions common;
    Action action;
    CLI::App app("Reference host and poller for FX-series programmable controllers", "fxhost");
    addCommands(app, common, action);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : static_cast<int>(ExitCode::Usage);
    }
    catchInterrupts();
    return runAction(action);
}
