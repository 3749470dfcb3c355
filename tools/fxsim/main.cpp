// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim: reads the command line, starts the application, runs until a signal or `quit`.

#include "tools/fxsim/application.h"
#include "tools/fxsim/control/control_client.h"
#include "tools/fxsim/end_signals.h"

#include <QCoreApplication>

namespace {

using namespace fxsim;

ExitCode run(const Options& options)
{
    if (!options.tellCommand.isEmpty()) {
        tell(options.controlPath, options.tellCommand);
        return ExitCode::Good;
    }
    endOnSignals();
    Application application(options);
    application.start();
    QCoreApplication::exec();
    return application.finish();
}

ExitCode runCommandLine(int argumentCount, char** arguments)
{
    try {
        const std::optional<Options> options = parseOptions(argumentCount, arguments);
        if (!options)
            return ExitCode::Good;
        // GLib's event loop takes more turns and system calls for a request than Qt's own.
        qputenv("QT_NO_GLIB", "1");
        const QCoreApplication loop(argumentCount, arguments);
        return run(*options);
    } catch (const Error& error) {
        return complain(error);
    }
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    return static_cast<int>(runCommandLine(argumentCount, arguments));
}
