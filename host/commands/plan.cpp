// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost plan: what a set of addresses costs on the line: the blocks that the driver makes of it,
// what each reads that nobody asked for, and how long a cycle takes at usual speeds. Needs no PLC.

#include "host/blocks.h"
#include "host/commands/connection.h"

namespace fxhost {

namespace {

constexpr int bitsPerCharacter = 10;  // start, seven data, even parity, stop
constexpr int speeds[] = {9600, 19200, 38400, 57600, 115200};

using Addresses = std::vector<std::string>;

int askedRegisters(const QVector<RegisterRange>& asked, const RegisterRange& block)
{
    int registers = 0;
    for (int index = 0; index < block.count; ++index) {
        RegisterRange one = block;
        one.first += index;
        one.count = 1;
        for (const RegisterRange& range : asked) {
            if (isInside(one, range)) {
                ++registers;
                break;
            }
        }
    }
    return registers;
}

void showBlocks(const CommonOptions& common, const RegisterCatalogue& catalogue,
                const QVector<RegisterRange>& asked, const QVector<FRAME_PRO>& plan)
{
    Records records(common.output, {{"block"},
                                    {"registers", Align::Right},
                                    {"bytes", Align::Right},
                                    {"unasked", Align::Right},
                                    {"characters", Align::Right}});
    for (const FRAME_PRO& frame : plan) {
        const RegisterRange block = blockRange(catalogue, frame.variable);
        records.add({fromToText(block), block.count, frame.replyDataChars / 2,
                     block.count - askedRegisters(asked, block),
                     frame.frameLength + frame.replyLength});
    }
    records.finish();
}

void showCycleTimes(const QVector<FRAME_PRO>& plan)
{
    int characters = 0;
    for (const FRAME_PRO& frame : plan)
        characters += frame.frameLength + frame.replyLength;
    QStringList times;
    for (const int baud : speeds) {
        const double cycleMs = 1000.0 * bitsPerCharacter * characters / baud;
        times += QStringLiteral("%1 ms at %2").arg(cycleMs, 0, 'f', 0).arg(baud);
    }
    Console().line();
    Console().line(QStringLiteral("  %1 blocks, %2 characters a cycle: %3 baud, and a scan of the "
                                  "PLC for each block")
                       .arg(plan.size())
                       .arg(characters)
                       .arg(times.join(QStringLiteral(", "))));
}

ExitCode runPlan(const CommonOptions& common, const Addresses& addresses)
{
    const AddressServices services(common);
    QVector<RegisterRange> asked;
    for (const std::string& address : addresses)
        asked.append(services.parse(address));
    DriverSession session(services.library, {1, common.wordsPerFrame});
    const QVector<FRAME_PRO> plan = planOf(session, asked);
    showBlocks(common, services.catalogue, asked, plan);
    if (common.output.mode == OutputMode::People && !common.output.quiet)
        showCycleTimes(plan);
    return ExitCode::Good;
}

}  // namespace

void addPlanCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("plan", "Show the polling plan of a set of addresses");
    const auto addresses = std::make_shared<Addresses>();
    command->add_option("address", *addresses, "Addresses such as D100:32 or X0:8")->required();
    command->callback([&action, &common, addresses] {
        action = [&common, addresses] { return runPlan(common, *addresses); };
    });
}

}  // namespace fxhost
