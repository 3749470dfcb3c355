// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim: reads the command line, starts the application, runs until a signal or `quit`.

#include "tools/fxsim/application.h"
#include "tools/fxsim/control/control_channels.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>

#include <sys/signalfd.h>

namespace {

using namespace fxsim;

// SIGINT, SIGTERM and SIGHUP end the event loop, so that links are closed and files written.
void endOnSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    struct sigaction onHangUp = {};
    ::sigaction(SIGHUP, nullptr, &onHangUp);
    if (onHangUp.sa_handler != SIG_IGN)  // nohup ignores it
        sigaddset(&ending, SIGHUP);
    ::sigprocmask(SIG_BLOCK, &ending, nullptr);
    auto* notifier = new QSocketNotifier(::signalfd(-1, &ending, SFD_CLOEXEC),
                                         QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, &QCoreApplication::quit);
    // A client that left is no reason to end; in the background the terminal belongs to others.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGTTIN, SIG_IGN));
}

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
