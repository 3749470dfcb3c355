// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A bad line: replies that are damaged, refused or missing, then a PLC that is silent for a while.
// The driver retries, gives up after the last retry and continues with the plan.

#include "tools/fxhost/demo/demo_bench.h"
#include "tools/fxhost/views/frame_text.h"

namespace fxtools {

namespace {

constexpr int noiseMs = 6000;
constexpr int linesShown = 12;
const char* const noise = "silence=0.05,wrong-sum=0.08,flipped-bits=0.06,truncated=0.06,"
                          "nak=0.06,junk-before=0.06";

// Polls with these faults. Shows rejected replies with the driver's error text: the first few, and
// all that end an exchange. Returns their number.
int pollWith(DemoBench& bench, const QString& faults, const Enough& enough, Round& round)
{
    int rejected = 0;
    bench.loop.onExchange = [&](const Exchange& exchange) {
        if (exchange.answer == DriverAnswer::Accepted ||
            (++rejected > linesShown && !exchange.hasFailed()))
            return;
        const QString answer = answerText(exchange.answer);
        bench.console.line(QStringLiteral("  %1 %2 %3")
                               .arg(exchange.errorText, -18)
                               .arg(verdictText(exchange.verdict), -38)
                               .arg(exchange.hasFailed() ? bench.console.bad(answer) : answer));
    };
    bench.control->run("faults " + faults);
    round = runUntil(bench.loop, enough);
    bench.control->run("faults none");
    bench.loop.onExchange = nullptr;
    return rejected;
}

}  // namespace

void showTrouble(DemoBench& bench)
{
    if (!bench.control)
        return;
    bench.console.heading(
        "A bad line: station#register(count)(bytes received), and what was wrong");
    const quint32 before = bench.valueOf("D120");
    const qint64 endUs = bench.loop.elapsedUs() + qint64(1000) * noiseMs;
    Round round;
    const auto isOver = [&](const Round& soFar) {
        return bench.loop.elapsedUs() >= endUs && !soFar.inFlight;
    };
    const int rejected = pollWith(bench, noise, isOver, round);
    bench.confirm(rejected > 0, QStringLiteral("%1 replies rejected in %2 exchanges")
                                    .arg(rejected)
                                    .arg(round.ended.size()));
    pollWith(
        bench, "silence=1", [](const Round& soFar) { return !soFar.ended.isEmpty(); }, round);
    bench.confirm(round.failed() == 1,
                  "a silent PLC: the exchange is given up after three attempts");
    const Round after = bench.pollOnce();
    bench.confirm(after.allGood() && bench.valueOf("D120") == before,
                  "the line is good again: a cycle without rejections, D120 unchanged");
}

}  // namespace fxtools
