// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the driver reads: its register types, the plan that a screen becomes, values that change
// because the PLC runs its program, and a one-off read. The driver does not show its plan, but the
// frames of its first cycle are the plan.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/demo/demo_bench.h"
#include "tools/fxhost/views/frame_text.h"
#include "tools/library/addresses.h"
#include "tools/library/values.h"
#include "tools/table.h"

namespace fxtools {

namespace {

constexpr int livelyEveryMs = 50;
constexpr int snapshotEveryMs = 2500;  // where nothing can be redrawn
constexpr int valueColumns = 28;       // keeps the columns where they are

QString askedFor(const QVector<ScreenItem>& screen, const RegisterRange& block)
{
    QStringList names;
    for (const ScreenItem& item : screen) {
        if (isInside(item.range, block))
            names += item.range.text();
    }
    return names.join(' ');
}

QString shownValues(const ScreenItem& item, const DriverSession& session)
{
    const ValueFormat format = item.isSigned ? ValueFormat::Signed : ValueFormat::Unsigned;
    const QVector<quint32> values = session.values(item.range);
    if (item.range.type.isBit())
        return bitsText(values);
    QStringList texts;
    for (const quint32 value : values)
        texts += valueText(value, item.range.type, format);
    return texts.join(QStringLiteral("  "));
}

// Draws the screen. `last` has what each row showed before; returns how many rows have changed.
int drawScreen(DemoBench& bench, QStringList& last, const QString& footer)
{
    Table table({{"address"}, {"value"}, {"meaning"}});
    int changed = 0;
    QStringList texts;
    for (const ScreenItem& item : bench.screen) {
        const QString text = shownValues(item, bench.session);
        const bool isNew = !last.isEmpty() && text != last[texts.size()];
        const QString wide = text.leftJustified(valueColumns);
        table.add({item.range.text(), isNew ? bench.console.changed(wide) : wide, item.label});
        texts += text;
        changed += isNew;
    }
    last = texts;
    bench.console.redraw(table.lines() << bench.console.dim(footer));
    return changed;
}

}  // namespace

void showRegisterTypes(DemoBench& bench)
{
    bench.console.heading("Register types, as the driver describes them");
    Table table({{"type"}, {"numbers"}, {"width"}, {"writable"}});
    for (const RegisterType& type : bench.catalogue.all()) {
        table.add({type.name, limitsText(type), widthText(type.width),
                   type.writable ? QStringLiteral("yes") : QStringLiteral("no")});
    }
    bench.console.lines(table.lines());
}

void showPlan(DemoBench& bench)
{
    bench.console.heading(QStringLiteral("The polling plan: %1 ranges on a screen become %2 blocks")
                              .arg(bench.screen.size())
                              .arg(bench.blocks));
    const qint64 startedUs = bench.loop.elapsedUs();
    const Round cycle = bench.pollOnce();
    const qint64 cycleMs = (bench.loop.elapsedUs() - startedUs) / 1000;
    Table table({{"block"}, {"bytes", Align::Right}, {"frame"}, {"requested"}});
    for (const Exchange& exchange : cycle.ended) {
        const RegisterRange block = blockRange(bench.catalogue, exchange.frame.variable);
        table.add({fromToText(block), QString::number(exchange.frame.replyDataChars / 2),
                   visibleBytes(requestBytes(exchange.frame)), askedFor(bench.screen, block)});
    }
    bench.console.lines(table.lines());
    bench.confirm(cycle.allGood() && cycle.ended.size() == bench.blocks,
                  QStringLiteral("all blocks were read; the cycle took %1 ms").arg(cycleMs));
}

void showLiveValues(DemoBench& bench, int forMs)
{
    bench.console.heading(forMs < 0 ? "Live values, until Ctrl-C" : "Live values");
    const qint64 startedUs = bench.loop.elapsedUs();
    const int drawEveryMs = bench.console.isTerminal() ? livelyEveryMs : snapshotEveryMs;
    qint64 nowUs = startedUs;
    qint64 nextDrawUs = startedUs;
    QStringList last;
    int changed = 0;
    for (int cycle = 1; forMs < 0 || nowUs - startedUs < qint64(1000) * forMs; ++cycle) {
        const qint64 cycleStartUs = nowUs;
        if (bench.pollOnce().end != RoundEnd::Done)
            break;
        nowUs = bench.loop.elapsedUs();
        if (nowUs < nextDrawUs)
            continue;
        const QString footer =
            QStringLiteral("  cycle %1: %2 ms; the driver reported %3 changed values");
        changed += drawScreen(
            bench, last,
            footer.arg(cycle).arg((nowUs - cycleStartUs) / 1000).arg(bench.valuesChanged));
        nextDrawUs = nowUs + qint64(1000) * drawEveryMs;
    }
    bench.console.endRedraw();
    if (forMs >= 0)
        bench.confirm(changed > 0, "values changed while the PLC ran its program");
}

void showConditionalRead(DemoBench& bench)
{
    bench.console.heading("A one-off read with its completion callback");
    const RegisterRange range = bench.range("D100:40");
    const auto frames = [&bench] {
        return bench.loop.statistics().of(ExchangeKind::ConditionalRead).accepted;
    };
    const qint64 before = frames();
    const bool good = readOnce(bench.loop, range) == ReplyVerdict::Good;
    bench.console.line(
        QStringLiteral("  %1 read in %2 frames, ahead of the plan; D120 in this range is %3")
            .arg(range.text())
            .arg(frames() - before)
            .arg(bench.valueOf("D120")));
    bench.confirm(good, "the callback reported that the read has succeeded");
}

}  // namespace fxtools
