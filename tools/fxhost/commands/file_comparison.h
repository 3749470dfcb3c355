// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The registers of a file beside what the PLC holds, as commands show it; and what is told of a
// write that failed, or whose registers then hold something else. It always says what the PLC may
// hold now.

#pragma once

#include "tools/fxhost/commands/connection.h"
#include "tools/service/comparison.h"

namespace fxtools {

// The registers that differ or are refused: a table, or records.
void showDifferences(const Comparison& comparison, const OutputOptions& output);

// "not written: refused by the PLC (NAK)", or of several frames "1 of 3 frames written: no reply;
// D0 … D31 written, D32 … D63 possibly written, nothing else".
QString failureText(const WriteOutcome& outcome);

// --verify, which is the default, and --no-verify
void addVerifyOption(CLI::App& command, bool& verify, const std::string& meaning);

// "D219=0, D220=0 and 3 more": the registers that hold another value than wanted.
QString differencesText(const RegisterRange& range, const QVector<quint32>& wanted,
                        const QVector<quint32>& held);

// Names the registers of `runs` that read back with another value, and why that may be.
void complainOfDifferent(const QStringList& names, const QVector<RegisterRun>& runs);

}  // namespace fxtools
