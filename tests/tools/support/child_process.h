// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A process that ends with the test, however the test ends.

#pragma once

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

class ChildProcess : public QProcess
{
protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
};
