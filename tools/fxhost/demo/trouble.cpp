// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A bad line: replies that are damaged, refused or missing, then a PLC that is silent for a while.
// The driver retries, gives up after the last retry and continues with the plan.

#include "tools/fxhost/demo/chapters.h"
#include "tools/fxhost/views/frame_text.h"

namespace fxtools {

namespace {

constexpr int noiseMs = 6000;
constexpr int linesShown = 12;
const char* const noise = "faults silence=0.05,wrong-sum=0.08,flipped-bits=0.06,truncated=0.06,"
                          "nak=0.06,junk-before=0.06";

// Shows rejected replies with the driver's error text: the first few, and all that end an exchange.
class RejectionLog
{
public:
    explicit RejectionLog(DemoBench& bench) : m_bench(bench)
    {
        m_bench.loop().onExchange = [this](const Exchange& exchange) { note(exchange); };
    }
    ~RejectionLog() { m_bench.loop().onExchange = nullptr; }
    RejectionLog(const RejectionLog&) = delete;
    RejectionLog& operator=(const RejectionLog&) = delete;

    int rejected() const { return m_rejected; }

private:
    void note(const Exchange& exchange);

    DemoBench& m_bench;
    int m_rejected = 0;
};

void RejectionLog::note(const Exchange& exchange)
{
    if (exchange.answer == DriverAnswer::Accepted)
        return;
    ++m_rejected;
    if (m_rejected > linesShown && !exchange.hasFailed())
        return;
    const Console& console = m_bench.console();
    const QString answer = answerText(exchange.answer);
    m_bench.console().line(QStringLiteral("  %1 %2 %3")
                               .arg(exchange.errorText, -18)
                               .arg(verdictText(exchange.verdict), -38)
                               .arg(exchange.hasFailed() ? console.bad(answer) : answer));
}

void pollThroughNoise(DemoBench& bench)
{
    RejectionLog log(bench);
    bench.control()->run(noise);
    const qint64 endUs = bench.loop().elapsedUs() + qint64(1000) * noiseMs;
    int ended = 0;
    while (bench.loop().elapsedUs() < endUs) {
        const Round cycle = bench.pollOnce();
        ended += cycle.ended.size();
        if (cycle.end != RoundEnd::Done)
            break;
    }
    bench.control()->run("faults none");
    bench.confirm(
        log.rejected() > 0,
        QStringLiteral("%1 replies rejected in %2 exchanges").arg(log.rejected()).arg(ended));
}

void pollThroughSilence(DemoBench& bench)
{
    RejectionLog log(bench);
    bench.control()->run("faults silence=1");
    const Round round =
        runUntil(bench.loop(), [](const Round& soFar) { return !soFar.ended.isEmpty(); });
    bench.control()->run("faults none");
    bench.confirm(round.failed() == 1,
                  "a silent PLC: the exchange is given up after three attempts");
}

}  // namespace

void showTrouble(DemoBench& bench)
{
    if (!bench.control())
        return;
    bench.console().heading(
        "A bad line: station#register(count)(bytes received), and what was wrong");
    pollThroughNoise(bench);
    pollThroughSilence(bench);
    const quint32 before = bench.session().values(bench.range("D120")).value(0);
    const Round after = bench.pollOnce();
    const quint32 afterwards = bench.session().values(bench.range("D120")).value(0);
    bench.confirm(after.allGood() && before == afterwards,
                  "the line is good again: a cycle without rejections, D120 unchanged");
}

}  // namespace fxtools
