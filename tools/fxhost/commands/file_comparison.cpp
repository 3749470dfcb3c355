// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/file_comparison.h"

#include "tools/exchange/blocks.h"
#include "tools/library/values.h"

namespace fxtools {

namespace {

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
