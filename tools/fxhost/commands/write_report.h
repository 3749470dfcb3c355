// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is told of a write that failed, or whose registers then hold something else. It always says
// what the PLC may hold now.

#pragma once

#include "tools/exchange/polling.h"
#include "tools/fxhost/commands/command.h"
#include "tools/library/register_file.h"

namespace fxtools {

// "1 of 3 frames written: no reply; D0 … D31 written, D32 … D63 possibly written, nothing else".
QString failureText(const WriteOutcome& outcome);

// --verify, which is the default, and --no-verify
void addVerifyOption(CLI::App& command, bool& verify);

// "D219=0, D220=0 and 3 more": the registers that hold another value than wanted.
QString differencesText(const RegisterRange& range, const QVector<quint32>& wanted,
                        const QVector<quint32>& held);

// Names the registers of `runs` that read back with another value, and why that may be.
void complainOfDifferent(const QStringList& names, const QVector<RegisterRun>& runs);

}  // namespace fxtools
