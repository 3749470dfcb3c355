// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// gateway_chaos: takes the gateway through one world after the other, each made from a seed, and
// says how it went. Exit code 0: nothing was wrong; 1: something was; 2: a mistake in the command
// line.

#include "chaos.h"
#include "tests/soak/memory_trend.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QHash>

#include <malloc.h>

#include <cstdio>

using namespace chaos;

namespace {

constexpr int seedsToSettle = 3;  // every code path was taken
constexpr double mostGrowthBytes = 4 << 20;
constexpr double msPerHour = 3600e3;

struct Totals
{
    Witness::Counts counts;
    WorldCounts world;
    fxsoak::MemoryTrend trend;
    bool isGood = true;
};

void add(Totals& totals, const Chaos& chaos)
{
    const Witness::Counts& more = chaos.witness().counts();
    Witness::Counts& all = totals.counts;
    for (const auto member :
         {&Witness::Counts::changes, &Witness::Counts::arrived, &Witness::Counts::live,
          &Witness::Counts::historical, &Witness::Counts::marked, &Witness::Counts::births,
          &Witness::Counts::missing, &Witness::Counts::dropped, &Witness::Counts::excused,
          &Witness::Counts::looks, &Witness::Counts::writes, &Witness::Counts::replies})
        all.*member += more.*member;
    const WorldCounts& world = chaos.counts();
    totals.world.simulatedMs += world.simulatedMs;
    for (const auto& [name, times] : world.troubles)
        totals.world.troubles[name] += times;
    for (const auto member :
         {&WorldCounts::mostDiskBytes, &WorldCounts::mostWaiting, &WorldCounts::mostUnconfirmed})
        totals.world.*member = std::max(totals.world.*member, world.*member);
}

void runSeed(unsigned int seed, qint64 stormMs, bool isTraced, Totals& totals)
{
    const auto print = [](qint64 steadyMs, const QString& text) {
        std::printf("%12.3f  %s\n", static_cast<double>(steadyMs) / 1000, qPrintable(text));
    };
    Chaos chaos(seed, isTraced ? Note(print) : Note());
    chaos.run(stormMs);
    add(totals, chaos);
    for (const QString& finding : chaos.findings())
        std::printf("WRONG  seed %u, %s\n", seed, qPrintable(finding));
    if (isTraced)
        std::printf("digest %016llx\n", chaos.witness().digest());
    totals.isGood &= chaos.findings().isEmpty();
}

void print(const Totals& totals)
{
    const Witness::Counts& counts = totals.counts;
    std::printf(
        "%.1f simulated hours; %lld changes for each of two forms, %lld arrived: %lld live, "
        "%lld later, of which %lld marked as perhaps repeated\n",
        static_cast<double>(totals.world.simulatedMs) / msPerHour, counts.changes, counts.arrived,
        counts.live, counts.historical, counts.marked);
    std::printf("%lld missing, %lld counted as dropped; %lld lost with the gateway's memory; "
                "%lld births; %lld comparisons of what is shown\n",
                counts.missing, counts.dropped, counts.excused, counts.births, counts.looks);
    std::printf("%lld writes asked for, %lld answered; at most %lld changes waited, %lld were "
                "unconfirmed, the disk held %lld bytes\n",
                counts.writes, counts.replies, totals.world.mostWaiting,
                totals.world.mostUnconfirmed, totals.world.mostDiskBytes);
    std::printf("troubles:");
    for (const auto& [name, times] : totals.world.troubles)
        std::printf(" %s %lld;", qPrintable(name), times);
    std::printf("\n");
}

int run(unsigned int firstSeed, int seeds, qint64 stormMs, bool isTraced)
{
    Totals totals;
    for (int number = 0; number < seeds; ++number) {
        runSeed(firstSeed + static_cast<unsigned int>(number), stormMs, isTraced, totals);
        malloc_trim(0);  // what worlds of other sizes left free is not held
        if (number >= seedsToSettle)
            totals.trend.add(totals.counts.changes, fxsoak::residentBytes());
    }
    print(totals);
    const double growth = totals.trend.fittedGrowthBytes();
    std::printf("memory: %+.0f KB fitted over the run\n", growth / 1024);
    if (!fxsoak::memoryIsWatched() && growth > mostGrowthBytes) {
        std::printf("WRONG  memory grows\n");
        totals.isGood = false;
    }
    std::printf("%s\n", totals.isGood ? "good" : "NOT GOOD");
    return totals.isGood ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
    qSetGlobalQHashSeed(0);  // so that a seed repeats itself
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Takes the gateway through troubles of all kinds, on simulated time."));
    parser.addHelpOption();
    parser.addOptions({{"seeds", "how many worlds (default: 24)", "N", "24"},
                       {"first", "the seed of the first one (default: 1)", "N", "1"},
                       {"minutes", "of troubles in each world (default: 60)", "N", "60"},
                       {"seed", "this world alone, and everything that happens in it", "N"}});
    parser.process(application);
    const bool isTraced = parser.isSet("seed");
    bool isSeed = false, isCount = false, isNumber = false;
    const unsigned int first = parser.value(isTraced ? "seed" : "first").toUInt(&isSeed);
    const int seeds = isTraced ? 1 : parser.value("seeds").toInt(&isCount);
    const qint64 minutes = parser.value("minutes").toLongLong(&isNumber);
    if (!isSeed || !(isCount || isTraced) || seeds < 1 || !isNumber || minutes < 1) {
        std::fprintf(stderr, "gateway_chaos: every option takes a number\n");
        return 2;
    }
    return run(first, seeds, minutes * 60000, isTraced);
}
