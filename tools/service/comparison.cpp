// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/service/comparison.h"

#include "tools/exchange/poller.h"
#include "tools/library/assignments.h"

#include <algorithm>

namespace fxtools {

namespace {

// A refused register is a finding; anything else that goes wrong ends the comparison.
std::optional<ReplyVerdict> compareRun(Connection& connection, const RegisterRun& run,
                                       QVector<ComparedRegister>& registers)
{
    Poller poller(connection.loop(), connection.catalogue(), {run.range});
    const RoundEnd end = poller.poll();
    if (end != RoundEnd::Done)
        return verdictOf(end);
    const QVector<quint32> held = poller.values(run.range);
    for (int index = 0; index < run.range.count; ++index) {
        const std::optional<ReplyVerdict> problem = poller.problemOf(run.range, index);
        if (problem && problem != ReplyVerdict::Refused)
            return problem;
        registers.append(
            {run.range.part(index, 1), run.values[index], held[index], problem.has_value()});
    }
    return std::nullopt;
}

}  // namespace

int Comparison::different() const
{
    return namesOfDifferent().size();
}

QStringList Comparison::namesOfDifferent() const
{
    QStringList names;
    for (const ComparedRegister& one : registers) {
        if (one.differs())
            names += one.one.nameOf(0);
    }
    return names;
}

int Comparison::refused() const
{
    return static_cast<int>(
        std::count_if(registers.begin(), registers.end(),
                      [](const ComparedRegister& one) { return one.isRefused; }));
}

std::optional<ReplyVerdict> Comparison::firstProblem() const
{
    return problem || refused() == 0 ? problem : ReplyVerdict::Refused;
}

QVector<RegisterRun> Comparison::changes(int mostRegisters) const
{
    QVector<RegisterRun> runs;
    for (const ComparedRegister& one : registers) {
        if (one.differs())
            append(runs, {one.one, {one.inFile}}, mostRegisters);
    }
    return runs;
}

RegisterFile registersOf(const QString& path, const RegisterCatalogue& catalogue, int wordsPerFrame)
{
    RegisterFile file = readRegisterFile(path, catalogue, wordsPerFrame / 2);
    requireRegisters(path, file.runs);
    return file;
}

RegisterFile writableRegistersOf(const QString& path, const RegisterCatalogue& catalogue,
                                 int wordsPerFrame, bool force)
{
    RegisterFile file = registersOf(path, catalogue, wordsPerFrame);
    if (force)
        checkWritable(path, file.runs);
    else
        requireWritable(path, file.runs, catalogue);
    return file;
}

void requireWritable(const QString& path, const QVector<RegisterRun>& runs,
                     const RegisterCatalogue& catalogue)
{
    checkWritable(path, runs);
    for (const RegisterRun& run : runs)
        requireOwnMemory(run.range, catalogue);
}

Comparison compareWithPlc(Connection& connection, const QVector<RegisterRun>& runs,
                          const Progress& progress)
{
    Comparison comparison;
    for (int done = 0; done < runs.size() && !comparison.problem; ++done) {
        progress(done, runs.size());
        comparison.problem = compareRun(connection, runs[done], comparison.registers);
    }
    if (!comparison.problem)
        progress(runs.size(), runs.size());
    return comparison;
}

}  // namespace fxtools
