// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The registers of a file beside what the PLC holds.

#pragma once

#include "tools/fxhost/commands/connection.h"
#include "tools/fxhost/commands/progress.h"
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
    int refused() const;

    // The registers that differ, neighbours of one run of the file together.
    QVector<RegisterRun> changes(int mostRegisters) const;
};

Comparison compareWithPlc(Connection& connection, const QVector<RegisterRun>& runs,
                          const Progress& progress);

// The registers that differ or are refused: a table, or records.
void showDifferences(const Comparison& comparison, const OutputOptions& output);

}  // namespace fxtools
