// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim --tell: one command to a simulator that runs already, over its control socket.

#pragma once

#include <QString>

namespace fxsim {

// Prints what came back; an ExitCode: exitUsage when the simulator refused the command.
int tell(const QString& controlPath, const QString& command);

}  // namespace fxsim
