// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/file_comparison.h"

#include "tools/exchange/blocks.h"
#include "tools/exchange/poller.h"
#include "tools/library/assignments.h"
#include "tools/library/values.h"

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

constexpr int mostNamed = 8;  // registers in one message

// Neighbours as one range.
QStringList joined(const QVector<RegisterRange>& ranges)
{
    QVector<RegisterRange> whole;
    for (const RegisterRange& range : ranges) {
        if (!whole.isEmpty() && whole.last().isContinuedBy(range))
            whole.last().count += range.count;
        else
            whole.append(range);
    }
    QStringList texts;
    for (const RegisterRange& range : whole)
        texts += fromToText(range);
    return texts;
}

QString firstOf(const QStringList& texts)
{
    const int unnamed = texts.size() - mostNamed;
    const QString named = texts.mid(0, mostNamed).join(QStringLiteral(", "));
    return unnamed > 0 ? QStringLiteral("%1 and %2 more").arg(named).arg(unnamed) : named;
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

RegisterFile registersOf(const QString& path, const Connection& connection)
{
    const int wordsPerFrame = connection.session().settings().wordsPerFrame;
    return readRegisterFile(path, connection.catalogue(), wordsPerFrame / 2);
}

RegisterFile writableRegistersOf(const QString& path, const Connection& connection, bool force)
{
    RegisterFile file = registersOf(path, connection);
    checkWritable(path, file.runs);
    for (const RegisterRun& run : file.runs) {
        if (!force)
            requireOwnMemory(run.range, connection.catalogue());
    }
    return file;
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

void showDifferences(const Comparison& comparison, const OutputOptions& output)
{
    Records records(output, {{"address"}, {"plc"}, {"file"}, {"error"}});
    for (const ComparedRegister& one : comparison.registers) {
        const auto value = [&one](quint32 number) {
            return valueOf({number}, one.one.type, ValueStyle());
        };
        const QJsonValue none = QJsonValue::Undefined;
        if (one.isRefused)
            records.add(
                {one.one.text(), none, value(one.inFile), verdictText(ReplyVerdict::Refused)});
        else if (one.differs())
            records.add({one.one.text(), value(one.inPlc), value(one.inFile), none});
    }
    records.finish();
}

QString failureText(const WriteOutcome& outcome)
{
    const QString reason = verdictText(*outcome.problem);
    if (outcome.frames == 1)
        return outcome.uncertain.isEmpty()
                   ? "not written: " + reason
                   : reason + "; " + joined(outcome.uncertain).first() + " may have been written";
    QStringList parts;
    if (!outcome.acknowledged.isEmpty())
        parts += joined(outcome.acknowledged).join(QStringLiteral(", ")) + " written";
    if (!outcome.uncertain.isEmpty())
        parts += joined(outcome.uncertain).join(QStringLiteral(", ")) + " possibly written";
    if (!parts.isEmpty())
        parts += QStringLiteral("nothing else");
    const QString text = QStringLiteral("%1 of %2 frames written: %3")
                             .arg(outcome.acknowledged.size())
                             .arg(outcome.frames)
                             .arg(reason);
    return parts.isEmpty() ? text : text + "; " + parts.join(QStringLiteral(", "));
}

void addVerifyOption(CLI::App& command, bool& verify, const std::string& meaning)
{
    command.add_flag_callback(
        "--verify", [&verify] { verify = true; }, meaning + " (default)");
    command.add_flag_callback(
        "--no-verify", [&verify] { verify = false; }, "Leave this reading out");
}

QString differencesText(const RegisterRange& range, const QVector<quint32>& wanted,
                        const QVector<quint32>& held)
{
    QStringList texts;
    for (int index = 0; index < range.count; ++index) {
        if (held[index] != wanted[index])
            texts +=
                range.nameOf(index) + '=' + valueText(held[index], range.type, ValueFormat::Signed);
    }
    return firstOf(texts);
}

void complainOfDifferent(const QStringList& names, const QVector<RegisterRun>& runs)
{
    if (names.isEmpty())
        return;
    QString reason;
    for (const RegisterRun& run : runs) {
        if (reason.isEmpty())
            reason = run.range.readElsewhereText();
    }
    if (reason.isEmpty())
        reason = QStringLiteral("does the program in the PLC write there?");
    complain("written, but read back with another value: " + firstOf(names) + "; " + reason);
}

}  // namespace fxtools
