// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The registers of a file beside what the PLC holds.

#pragma once

#include "tools/exchange/polling.h"
#include "tools/library/register_file.h"
#include "tools/service/connection.h"

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
RegisterFile registersOf(const QString& path, const RegisterCatalogue& catalogue,
                         int wordsPerFrame);

// The same for a write: all of them writable and, without `force`, none on an address of others.
RegisterFile writableRegistersOf(const QString& path, const RegisterCatalogue& catalogue,
                                 int wordsPerFrame, bool force);

// Throws Failure, which names the file, unless all are writable and none is on an address of
// others.
void requireWritable(const QString& path, const QVector<RegisterRun>& runs,
                     const RegisterCatalogue& catalogue);

Comparison compareWithPlc(Connection& connection, const QVector<RegisterRun>& runs,
                          const Progress& progress);

}  // namespace fxtools
