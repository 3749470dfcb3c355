// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The registers of a file beside what the PLC holds; and what is told of a write that failed, or
// whose registers then hold something else. It always says what the PLC may hold now.

#pragma once

#include "tools/exchange/polling.h"
#include "tools/fxhost/commands/connection.h"
#include "tools/library/register_file.h"

namespace fxtools {

struct ComparedRegister
{
    RegisterRange one;
    quint32 inFile = 0;
    quint32 inPlc = 0;
    bool isRefused = false;  // the PLC does not let it be read

    bool differs() const { return !isRefused && inFile != inPlc; }
};

struct Comparison
{
    QVector<ComparedRegister> registers;
    std::optional<ReplyVerdict> problem;  // why it ended early

    int different() const;
    QStringList namesOfDifferent() const;
    int refused() const;
    std::optional<ReplyVerdict> firstProblem() const;  // also of a refused register

    // The registers that differ, neighbours of one run of the file together.
    QVector<RegisterRun> changes(int mostRegisters) const;
};

// The registers of a file, in runs that fit a frame. Throws Failure.
RegisterFile registersOf(const QString& path, const Connection& connection);

// The same for a write: all of them writable and, without `force`, none on an address of others.
RegisterFile writableRegistersOf(const QString& path, const Connection& connection, bool force);

Comparison compareWithPlc(Connection& connection, const QVector<RegisterRun>& runs,
                          const Progress& progress);

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
