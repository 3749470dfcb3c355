// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim: reads the command line, starts the application, runs until a signal or `quit`.

#include "tools/fxsim/application.h"
#include "tools/fxsim/control/control_client.h"
#include "tools/fxsim/end_signals.h"

#include <QCoreApplication>

int main(int argumentCount, char** arguments)
{
    const fxsim::ParsedOptions parsed = fxsim::parseOptions(argumentCount, arguments);
    if (!parsed.runs)
        return parsed.exitCode;
    // GLib's event loop takes more turns and system calls for a request than Qt's own.
    qputenv("QT_NO_GLIB", "1");
    QCoreApplication loop(argumentCount, arguments);
    if (!parsed.options.tellCommand.isEmpty())
        return fxsim::tell(parsed.options.controlPath, parsed.options.tellCommand);
    const fxsim::EndSignals endSignals;
    fxsim::Application application(parsed.options);
    const int code = application.start();
    if (code != fxsim::exitGood)
        return code;
    QCoreApplication::exec();
    return application.finish();
}
