// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Writes of the host, and their check. The cache shows a written value at once, before the PLC has
// it, so each write is checked against what is polled afterwards.

#include "tools/fxhost/demo/chapters.h"
#include "tools/fxhost/views/table.h"
#include "tools/library/values.h"

namespace fxtools {

namespace {

QString shown(const RegisterRange& range, const QVector<quint32>& values)
{
    return valueText(values.value(0), range.type, ValueFormat::Unsigned);
}

// Differs from the old value, so that the check cannot pass by accident.
quint32 newValue(const RegisterRange& range, quint32 old)
{
    switch (range.type.width) {
    case RegisterWidth::Bit:
        return old ? 0 : 1;
    case RegisterWidth::Word:
        return (old + 4711) & 0xFFFF;
    case RegisterWidth::DoubleWord:
        return old + 12345678;
    }
    return 0;
}

void writeAndReadBack(DemoBench& bench, const QString& address)
{
    const RegisterRange range = bench.range(address);
    const QVector<quint32> before = bench.session().values(range);
    const QVector<quint32> wanted = {newValue(range, before.value(0))};
    bench.session().write(range, wanted);
    const QVector<quint32> mirrored = bench.session().values(range);
    const Round acknowledged = flushWrites(bench.loop(), 1);
    const Round polled = bench.pollOnce();
    const QVector<quint32> fromPlc = bench.session().values(range);
    bench.confirm(acknowledged.allGood() && polled.allGood() && fromPlc == wanted,
                  QStringLiteral("%1: was %2, wrote %3; cache at once: %4, polled: %5")
                      .arg(range.text(), shown(range, before), shown(range, wanted),
                           shown(range, mirrored), shown(range, fromPlc)));
}

}  // namespace

void showWrites(DemoBench& bench)
{
    bench.console().heading("Host writes, read back from the PLC");
    for (const char* address : {"M100", "D120", "32CV201"})
        writeAndReadBack(bench, address);
}

void showConditionalRead(DemoBench& bench)
{
    bench.console().heading("A one-off read with its completion callback");
    const RegisterRange range = bench.range("D100:40");
    const qint64 framesBefore =
        bench.loop().statistics().of(ExchangeKind::ConditionalRead).accepted;
    const bool good = readOnce(bench.loop(), range) == ReplyVerdict::Good;
    const qint64 frames =
        bench.loop().statistics().of(ExchangeKind::ConditionalRead).accepted - framesBefore;
    bench.console().line(
        QStringLiteral("  %1 read in %2 frames, ahead of the plan; D120 in this range is %3")
            .arg(range.text())
            .arg(frames)
            .arg(bench.session().values(bench.range("D120")).value(0)));
    bench.confirm(good, "the callback reported that the read has succeeded");
}

}  // namespace fxtools
