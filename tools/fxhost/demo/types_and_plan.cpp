// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The demo's opening: the register types, and how a screen becomes a polling plan. The driver does
// not show its plan, but the frames of its first cycle are the plan.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/demo/chapters.h"
#include "tools/fxhost/views/frame_text.h"
#include "tools/fxhost/views/table.h"
#include "tools/library/addresses.h"

namespace fxtools {

namespace {

QString askedFor(const QVector<ScreenItem>& screen, const RegisterRange& block)
{
    QStringList names;
    for (const ScreenItem& item : screen) {
        if (isInside(item.range, block))
            names += item.range.text();
    }
    return names.join(' ');
}

}  // namespace

void showRegisterTypes(DemoBench& bench)
{
    bench.console().heading("Register types, as the driver describes them");
    Table table({{"type"}, {"numbers"}, {"width"}, {"writable"}});
    for (const RegisterType& type : bench.catalogue().all()) {
        table.add({type.name, limitsText(type), widthText(type.width),
                   type.writable ? QStringLiteral("yes") : QStringLiteral("no")});
    }
    for (const QString& line : table.lines())
        bench.console().line(line);
}

void showPlan(DemoBench& bench)
{
    bench.console().heading(
        QStringLiteral("The polling plan: %1 ranges on a screen become %2 blocks")
            .arg(bench.screen().size())
            .arg(bench.blocks()));
    const qint64 startedUs = bench.loop().elapsedUs();
    const Round cycle = bench.pollOnce();
    const qint64 cycleMs = (bench.loop().elapsedUs() - startedUs) / 1000;
    Table table({{"block"}, {"bytes", Align::Right}, {"frame"}, {"requested"}});
    for (const Exchange& exchange : cycle.ended) {
        const RegisterRange block = blockRange(bench.catalogue(), exchange.frame.variable);
        table.add({fromToText(block), QString::number(exchange.frame.replyDataChars / 2),
                   visibleBytes(requestBytes(exchange.frame)), askedFor(bench.screen(), block)});
    }
    for (const QString& line : table.lines())
        bench.console().line(line);
    bench.confirm(cycle.allGood() && cycle.ended.size() == bench.blocks(),
                  QStringLiteral("all blocks were read; the cycle took %1 ms").arg(cycleMs));
}

}  // namespace fxtools
