// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/link/interrupt.h"

#include <QThread>

#include <algorithm>
#include <csignal>
#include <ctime>

#include <sys/time.h>
#include <unistd.h>

namespace fxtools {

namespace {

constexpr qint64 oneInterruptMs = 500;
constexpr qint64 napMs = 20;  // how soon an interrupt is noticed

volatile std::sig_atomic_t interruptSeen = 0;
timespec firstSeen = {};
volatile std::sig_atomic_t continuedSeen = 0;
void (*restoreBeforeKill)() = nullptr;

qint64 sinceFirstMs()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (now.tv_sec - firstSeen.tv_sec) * 1000 + (now.tv_nsec - firstSeen.tv_nsec) / 1000000;
}

// A second interrupt ends the program at once. One that follows within half a second is the first
// again: a script may send it both to the process and to its group.
extern "C" void noteInterrupt(int signalNumber)
{
    if (interruptSeen == 0) {
        clock_gettime(CLOCK_MONOTONIC, &firstSeen);
        interruptSeen = signalNumber;
    } else if (signalNumber != SIGALRM && sinceFirstMs() > oneInterruptMs) {
        struct sigaction action = {};
        action.sa_handler = SIG_DFL;
        sigaction(signalNumber, &action, nullptr);
        if (restoreBeforeKill)
            restoreBeforeKill();
        kill(getpid(), signalNumber);
    }
}

extern "C" void noteContinued(int)
{
    continuedSeen = 1;
}

}  // namespace

void catchSignals()
{
    struct sigaction action = {};
    action.sa_handler = noteInterrupt;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGALRM, &action, nullptr);
    struct sigaction onHangUp = {};
    sigaction(SIGHUP, nullptr, &onHangUp);
    if (onHangUp.sa_handler != SIG_IGN)  // as nohup leaves it
        sigaction(SIGHUP, &action, nullptr);
    action.sa_handler = noteContinued;
    sigaction(SIGCONT, &action, nullptr);
}

bool interrupted()
{
    return interruptSeen != 0;
}

int interruptSignal()
{
    return interruptSeen;
}

void interruptAfter(qint64 timeMs)
{
    itimerval timer = {};
    timer.it_value.tv_sec = static_cast<time_t>(timeMs / 1000);
    timer.it_value.tv_usec = static_cast<suseconds_t>(timeMs % 1000 * 1000);
    setitimer(ITIMER_REAL, &timer, nullptr);
}

void beforeKill(void (*restore)())
{
    restoreBeforeKill = restore;
}

bool sleepUnlessInterrupted(qint64 timeMs, const std::function<bool()>& isInterrupted)
{
    for (qint64 leftMs = timeMs; leftMs > 0 && !isInterrupted(); leftMs -= napMs)
        QThread::msleep(static_cast<unsigned long>(std::min(leftMs, napMs)));
    return !isInterrupted();
}

bool takeContinued()
{
    const bool seen = continuedSeen != 0;
    continuedSeen = 0;
    return seen;
}

}  // namespace fxtools
