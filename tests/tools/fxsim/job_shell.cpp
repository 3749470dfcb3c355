// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// As much of a shell as a test needs to see a program as a job: job_shell PROGRAM ARGUMENT... runs
// it in the foreground of its terminal and takes the terminal back when the job stops. SIGUSR1
// brings the job to the foreground, SIGUSR2 lets it go on in the background. At the end it says
// whether the terminal is as it was.

#include <csignal>
#include <cstdio>
#include <initializer_list>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

void say(const char* text)
{
    std::printf("%s.\n", text);
    std::fflush(stdout);
}

bool isAsBefore(const termios& before)
{
    termios now{};
    tcgetattr(STDIN_FILENO, &now);
    return now.c_lflag == before.c_lflag && now.c_iflag == before.c_iflag &&
           now.c_oflag == before.c_oflag;
}

// True when the job has ended.
bool lookAfter(pid_t job, const termios& before)
{
    int status = 0;
    if (waitpid(job, &status, WNOHANG | WUNTRACED) != job)
        return false;
    say(WIFSTOPPED(status) ? "stopped" : isAsBefore(before) ? "restored" : "changed");
    tcsetpgrp(STDIN_FILENO, getpgrp());
    return !WIFSTOPPED(status);
}

}  // namespace

int main(int, char** arguments)
{
    sigset_t heard;
    sigset_t usual;
    sigemptyset(&heard);
    for (const int number : {SIGCHLD, SIGUSR1, SIGUSR2})
        sigaddset(&heard, number);
    sigprocmask(SIG_BLOCK, &heard, &usual);
    std::signal(SIGTTOU, SIG_IGN);
    termios before{};
    tcgetattr(STDIN_FILENO, &before);
    const pid_t job = fork();
    if (job == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setpgid(0, 0);
        tcsetpgrp(STDIN_FILENO, getpid());
        std::signal(SIGTTOU, SIG_DFL);
        sigprocmask(SIG_SETMASK, &usual, nullptr);
        execv(arguments[1], arguments + 1);
        _exit(127);
    }
    std::printf("pid %d.\n", static_cast<int>(job));
    std::fflush(stdout);
    int number = 0;
    while (sigwait(&heard, &number) == 0) {
        if (number == SIGCHLD && lookAfter(job, before))
            return 0;
        if (number == SIGUSR1)
            tcsetpgrp(STDIN_FILENO, job);
        if (number != SIGCHLD)
            kill(-job, SIGCONT);
    }
    return 1;
}
