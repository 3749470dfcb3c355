// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim as a job of a shell: it is started in the background of a terminal, and fetched to the
// foreground.

#include "tests/tools/fxsim/fxsim_process.h"
#include "tests/tools/fxsim/printing.h"
#include "tests/tools/fxsim/wire_frames.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <csignal>

#include <poll.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// A terminal whose shell runs fxsim in the background until it is told to give it the terminal.
class Shell
{
public:
    Shell()
    {
        m_shell = forkpty(&m_terminal, nullptr, nullptr, nullptr);
        if (m_shell == 0)
            runShell();
    }
    ~Shell()
    {
        ::kill(m_shell, SIGKILL);
        ::waitpid(m_shell, nullptr, 0);
        ::close(m_terminal);
    }
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;

    void fetchToForeground() { ::kill(m_shell, SIGUSR1); }

    void type(const QByteArray& line)
    {
        EXPECT_EQ(::write(m_terminal, line.constData(), static_cast<size_t>(line.size())),
                  line.size());
    }

    // What was shown, up to the text that is waited for or the deadline.
    QByteArray waitFor(const QByteArray& text)
    {
        pollfd waiting{m_terminal, POLLIN, 0};
        char byte = 0;
        while (!m_shown.contains(text) && ::poll(&waiting, 1, deadlineMs) == 1 &&
               ::read(m_terminal, &byte, 1) == 1)
            m_shown.append(byte);
        return m_shown;
    }

private:
    [[noreturn]] static void runShell()
    {
        sigset_t told;
        sigemptyset(&told);
        sigaddset(&told, SIGUSR1);
        sigprocmask(SIG_BLOCK, &told, nullptr);
        const pid_t job = fork();
        if (job == 0) {
            setpgid(0, 0);
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            execl(FXSIM_PATH, FXSIM_PATH, "--tcp", "0", "--baud", "0", "--program", "none",
                  nullptr);
            _exit(127);
        }
        setpgid(job, job);
        int number = 0;
        sigwait(&told, &number);
        tcsetpgrp(STDIN_FILENO, job);
        waitpid(job, nullptr, 0);
        _exit(0);
    }

    int m_terminal = -1;
    pid_t m_shell = -1;
    QByteArray m_shown;
};

}  // namespace

// What was typed for the shell made it read no more commands ever.
TEST(FxsimTerminal, CommandsAreReadWhenItComesToTheForeground)
{
    Shell shell;
    const QString ready = QString::fromLatin1(shell.waitFor("\n"));
    TcpEnd host(QRegularExpression("tcp:[0-9.:]+").match(ready).captured());
    shell.type("peek 0\n");
    EXPECT_EQ(host.ask(readD100, 12), zerosOfD100) << "it has seen by now that there is input";
    shell.fetchToForeground();
    EXPECT_TRUE(shell.waitFor("ok\r\n").contains("0000: 00\r\nok\r\n"));
}
