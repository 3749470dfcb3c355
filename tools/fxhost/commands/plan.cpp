// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost plan: what polling a set of addresses costs: the blocks that the driver reads, the
// registers in them that were not asked for, and the cycle time at usual baud rates. Needs no PLC.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/connection.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr int bitsPerCharacter = 10;  // start, seven data, even parity, stop
constexpr int speeds[] = {9600, 19200, 38400, 57600, 115200};

bool isAsked(const QVector<RegisterRange>& asked, const RegisterRange& one)
{
    return std::any_of(asked.begin(), asked.end(),
                       [&one](const RegisterRange& range) { return isInside(one, range); });
}

// The registers that a block reads although they were not asked for, run by run.
QVector<RegisterRange> unaskedRuns(const QVector<RegisterRange>& asked, const RegisterRange& block)
{
    QVector<RegisterRange> runs;
    bool inRun = false;
    for (int index = 0; index < block.count; ++index) {
        const RegisterRange one = block.part(index, 1);
        const bool unasked = !isAsked(asked, one);
        if (unasked && inRun)
            ++runs.last().count;
        else if (unasked)
            runs.append(one);
        inRun = unasked;
    }
    return runs;
}

struct PlannedBlock
{
    QString registers;  // "D100 … D131"
    int registerCount = 0;
    int bytes = 0;
    int unaskedCount = 0;
    QStringList unasked;
    int characters = 0;  // of the request and its reply
};

PlannedBlock describe(const RegisterCatalogue& catalogue, const QVector<RegisterRange>& asked,
                      const FRAME_PRO& frame)
{
    const RegisterRange block = blockRange(catalogue, frame.variable);
    PlannedBlock planned;
    planned.registers = fromToText(block);
    planned.registerCount = block.count;
    planned.bytes = frame.replyDataChars / 2;
    planned.characters = frame.frameLength + frame.replyLength;
    for (const RegisterRange& run : unaskedRuns(asked, block)) {
        planned.unaskedCount += run.count;
        planned.unasked += fromToText(run);
    }
    return planned;
}

double cycleMs(int characters, int baud)
{
    return std::round(1000.0 * bitsPerCharacter * characters / baud);
}

int charactersOf(const QVector<PlannedBlock>& plan)
{
    int characters = 0;
    for (const PlannedBlock& block : plan)
        characters += block.characters;
    return characters;
}

void showBlocks(const CommonOptions& common, const QVector<PlannedBlock>& plan)
{
    Records records(common.output, {{"block"},
                                    {"registers", Align::Right},
                                    {"bytes", Align::Right},
                                    {"characters", Align::Right},
                                    {"unasked", Align::Right},
                                    {"which"}});
    for (const PlannedBlock& block : plan) {
        records.add({block.registers, block.registerCount, block.bytes, block.characters,
                     block.unaskedCount, block.unasked.join(QStringLiteral(", "))});
    }
    records.finish();
}

void showCycleTimes(const QVector<PlannedBlock>& plan)
{
    const int characters = charactersOf(plan);
    QVector<Table::Column> columns = {{QStringLiteral("baud")}};
    QStringList times = {QStringLiteral("cycle, ms")};
    for (const int baud : speeds) {
        columns.append({QString::number(baud), Align::Right});
        times += QString::number(cycleMs(characters, baud));
    }
    Table table(columns);
    table.add(times);
    Console().line();
    Console().line(
        QStringLiteral("  %1 with %2 for one cycle. Time on the line in ms; the PLC adds up to\n"
                       "  one scan for each block:")
            .arg(counted(plan.size(), "block"), counted(characters, "character")));
    for (const QString& line : table.lines())
        Console().line(line);
}

void showJson(const QVector<PlannedBlock>& plan)
{
    QJsonArray blocks;
    for (const PlannedBlock& block : plan) {
        blocks.append(QJsonObject{{"block", block.registers},
                                  {"registers", block.registerCount},
                                  {"bytes", block.bytes},
                                  {"characters", block.characters},
                                  {"unasked", block.unaskedCount},
                                  {"which", QJsonArray::fromStringList(block.unasked)}});
    }
    const int characters = charactersOf(plan);
    QJsonObject times;
    for (const int baud : speeds)
        times.insert(QString::number(baud), cycleMs(characters, baud));
    const QJsonObject whole = {
        {"blocks", blocks}, {"characters", characters}, {"cycleMsAtBaud", times}};
    Console().line(QString::fromUtf8(QJsonDocument(whole).toJson().trimmed()));
}

ExitCode runPlan(const CommonOptions& common, const AddressOptions& addresses)
{
    const AddressServices services(common);
    const QVector<RegisterRange> asked = rangesOf(addresses, services.catalogue);
    DriverSession session(services.library, {1, connectionSettings(common).session.wordsPerFrame});
    QVector<PlannedBlock> plan;
    for (const FRAME_PRO& frame : planOf(session, asked))
        plan.append(describe(services.catalogue, asked, frame));
    if (common.output.mode == OutputMode::Json) {
        showJson(plan);
        return ExitCode::Good;
    }
    showBlocks(common, plan);
    if (common.output.mode == OutputMode::People && !common.output.quiet)
        showCycleTimes(plan);
    return ExitCode::Good;
}

}  // namespace

void addPlanCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("plan", "Print the blocks that the driver polls for addresses");
    const auto addresses = std::make_shared<AddressOptions>();
    addAddressOptions(*command, *addresses);
    addExamples(*command,
                {"fxhost plan D100:10 D105:20 D140:5 M5 M20:3", "fxhost plan D0:320 --words 64"});
    command->callback([&action, &common, addresses] {
        action = [&common, addresses] { return runPlan(common, *addresses); };
    });
}

}  // namespace fxtools
