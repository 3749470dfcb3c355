// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost plan: what polling a set of addresses costs: the blocks that the driver reads, the
// registers in them that were not asked for, and the cycle time at usual baud rates. Needs no PLC.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/connection.h"
#include "tools/fxhost/views/json_text.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr int bitsPerCharacter = 10;  // start, seven data, even parity, stop
constexpr int savingsShown = 5;
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

// Of the line that was named, if it has one.
int baudOf(const LinkSettings& link)
{
    const auto* const serial = std::get_if<SerialSettings>(&link);
    const auto* const simulated = std::get_if<SimulatedSettings>(&link);
    const int baud = serial && serial->line ? serial->line->baud
                     : simulated            ? simulated->baud.value_or(0)
                                            : 0;
    return baud > 0 ? baud : speeds[0];
}

double timeMs(int characters, int baud)
{
    return std::round(1000.0 * bitsPerCharacter * characters / baud);
}

int charactersOf(const QVector<FRAME_PRO>& plan)
{
    int characters = 0;
    for (const FRAME_PRO& frame : plan)
        characters += frame.frameLength + frame.replyLength;
    return characters;
}

// What a cycle costs less without one of the addresses.
struct Saving
{
    QString address;
    int characters = 0;
};

// The largest ones first; none where only one address was asked for.
QVector<Saving> savingsOf(DriverSession& session, const QVector<RegisterRange>& asked)
{
    const int all = charactersOf(planOf(session, asked));
    QVector<Saving> savings;
    for (int index = 0; asked.size() > 1 && index < asked.size(); ++index) {
        QVector<RegisterRange> others = asked;
        others.removeAt(index);
        savings.append({asked[index].text(), all - charactersOf(planOf(session, others))});
    }
    std::stable_sort(savings.begin(), savings.end(), [](const Saving& one, const Saving& other) {
        return one.characters > other.characters;
    });
    return savings;
}

void showBlocks(const CommonOptions& common, const QVector<PlannedBlock>& plan, int baud)
{
    Records records(common.output, {{"block"},
                                    {"registers", Align::Right},
                                    {"bytes", Align::Right},
                                    {"characters", Align::Right},
                                    {"ms", Align::Right},
                                    {"unasked", Align::Right},
                                    {"which"}});
    for (const PlannedBlock& block : plan) {
        records.add({block.registers, block.registerCount, block.bytes, block.characters,
                     timeMs(block.characters, baud), block.unaskedCount,
                     block.unasked.join(QStringLiteral(", "))});
    }
    records.finish();
}

void showCycle(int blocks, int characters, const QVector<Saving>& savings, int baud)
{
    QVector<Table::Column> columns = {{QStringLiteral("baud")}};
    QStringList times = {QStringLiteral("cycle, ms")};
    for (const int speed : speeds) {
        columns.append({QString::number(speed), Align::Right});
        times += QString::number(timeMs(characters, speed));
    }
    Table table(columns);
    table.add(times);
    Console console;
    console.line();
    console.line(
        QStringLiteral("  %1 with %2 for one cycle. The ms of a block are its time on the line\n"
                       "  at %3 baud; the PLC adds up to one scan for each block.")
            .arg(counted(blocks, "block"), counted(characters, "character"))
            .arg(baud));
    console.lines(table.lines());
    if (!savings.isEmpty())
        console.line();
    for (const Saving& saving : savings.mid(0, savingsShown)) {
        console.line(QStringLiteral("  without %1: %2 ms a cycle less at %3 baud")
                         .arg(saving.address)
                         .arg(timeMs(saving.characters, baud))
                         .arg(baud));
    }
}

void showJson(const QVector<PlannedBlock>& plan, int characters, const QVector<Saving>& savings,
              int baud)
{
    QList<QByteArray> blocks;
    for (const PlannedBlock& block : plan) {
        blocks += jsonObject({{"block", jsonText(block.registers)},
                              {"registers", jsonText(block.registerCount)},
                              {"bytes", jsonText(block.bytes)},
                              {"characters", jsonText(block.characters)},
                              {"ms", jsonText(timeMs(block.characters, baud))},
                              {"unasked", jsonText(block.unaskedCount)},
                              {"which", jsonText(QJsonArray::fromStringList(block.unasked))}});
    }
    QVector<JsonMember> times;
    for (const int speed : speeds)
        times.append({QString::number(speed), jsonText(timeMs(characters, speed))});
    QVector<JsonMember> less;
    for (const Saving& saving : savings)
        less.append({saving.address, jsonText(timeMs(saving.characters, baud))});
    Console().line(jsonLines(jsonObject({{"baud", jsonText(baud)},
                                         {"blocks", jsonArray(blocks)},
                                         {"characters", jsonText(characters)},
                                         {"cycleMsAtBaud", jsonObject(times)},
                                         {"msLessWithout", jsonObject(less)}})));
}

ExitCode runPlan(const CommonOptions& common, const AddressOptions& addresses)
{
    const AddressServices services(common);
    const QVector<RegisterRange> asked = rangesOf(addresses, services.catalogue);
    DriverSession session(services.library, {1, connectionSettings(common).session.wordsPerFrame});
    const QVector<FRAME_PRO> frames = planOf(session, asked);
    QVector<PlannedBlock> plan;
    for (const FRAME_PRO& frame : frames)
        plan.append(describe(services.catalogue, asked, frame));
    const QVector<Saving> savings = savingsOf(session, asked);
    const int baud = baudOf(connectionSettings(common).link);
    if (common.output.mode == OutputMode::Json) {
        showJson(plan, charactersOf(frames), savings, baud);
        return ExitCode::Good;
    }
    showBlocks(common, plan, baud);
    if (common.output.mode == OutputMode::People && !common.output.quiet)
        showCycle(plan.size(), charactersOf(frames), savings, baud);
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
