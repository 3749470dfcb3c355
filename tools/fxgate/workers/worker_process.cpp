// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/workers/worker_process.h"

#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

namespace fxgate {

void WorkerProcess::Process::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setpgid(0, 0);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
}

WorkerProcess::WorkerProcess(const QString& program, const QStringList& arguments)
{
    m_process.setProgram(program);
    m_process.setArguments(arguments);
    connect(&m_process, &QProcess::readyReadStandardOutput, this,
            [this] { onOutput(m_process.readAllStandardOutput()); });
    connect(&m_process, &QProcess::readyReadStandardError, this,
            [this] { onComplaint(m_process.readAllStandardError()); });
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this] { onEnded(howItEnded()); });
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            onEnded("cannot start " + m_process.program() + ": " + m_process.errorString());
    });
}

WorkerProcess::~WorkerProcess()
{
    m_process.disconnect(this);
    m_process.kill();
    m_process.waitForFinished(killedMs);
}

QString WorkerProcess::howItEnded() const
{
    const char* const how = m_process.exitStatus() == QProcess::CrashExit
                                ? "the worker was ended by signal %1"
                                : "the worker ended with exit code %1";
    return QString::fromLatin1(how).arg(m_process.exitCode());
}

}  // namespace fxgate
