// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim --tell: sends one command to a running simulator, over its control socket.

#pragma once

#include <QString>

namespace fxsim {

// Prints the answer; throws an Error when nobody answered or the simulator refused the command.
void tell(const QString& controlPath, const QString& command);

}  // namespace fxsim
