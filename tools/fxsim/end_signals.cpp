// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See end_signals.h. A handler may do little: it writes a byte into a pipe that the event loop
// reads.

#include "tools/fxsim/end_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace fxsim {

namespace {

int pipeEnds[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 0;
    const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    static_cast<void>(written);  // a full pipe has woken the loop already
}

void answer(int signalNumber, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signalNumber, &action, nullptr);
}

bool isIgnored(int signalNumber)
{
    struct sigaction action = {};
    ::sigaction(signalNumber, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

}  // namespace

void endOnSignals()
{
    if (::pipe2(pipeEnds, O_NONBLOCK | O_CLOEXEC) != 0)
        return;  // signals then end the program at once
    auto* notifier =
        new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, &QCoreApplication::quit);
    answer(SIGINT, onSignal);
    answer(SIGTERM, onSignal);
    if (!isIgnored(SIGHUP))  // nohup ignores it
        answer(SIGHUP, onSignal);
    answer(SIGPIPE, SIG_IGN);  // a client that left is no reason to end
    answer(SIGTTIN, SIG_IGN);  // in the background the terminal belongs to others
}

}  // namespace fxsim
