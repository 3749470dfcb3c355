// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// soak: drives the loaded library through one world after the other, each made from a seed, and
// says how it went. Exit code 0: every accepted value was right, every write ended, memory did not
// grow; 1: not so; 2: a mistake in the command line; 3: the library could not be loaded.

#include "memory_trend.h"
#include "soak.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr int seedsToSettle = 10;  // every code path was taken
constexpr int linesOfProgress = 10;
constexpr double mostGrowthBytes = 1024 * 1024;
constexpr double usPerHour = 3600e6;

struct Options
{
    unsigned int firstSeed = 1;
    int seeds = 1;
    qint64 exchanges = 0;  // of each seed
    bool isTraced = false;
    std::optional<fxsim::FaultPlan> faults;
};

struct Result
{
    fxsoak::SoakCounts counts;
    fxsoak::MemoryTrend trend;
    bool isGood = true;
};

void printNote(qint64 atUs, const QString& text)
{
    std::printf("%14.6f  %s\n", static_cast<double>(atUs) / 1e6, qPrintable(text));
}

void soakSeed(unsigned int seed, const Options& options, Result& result)
{
    fxsoak::World world = fxsoak::worldOf(seed);
    world.plc.faults = options.faults.value_or(world.plc.faults);
    if (options.isTraced)
        std::printf("%s\n", qPrintable(world.text()));
    fxsoak::Soak soak(world, seed, options.isTraced ? &printNote : fxsoak::Note());
    soak.run(options.exchanges);
    result.counts.add(soak.counts());
    for (const QString& finding : soak.findings())
        std::printf("WRONG  seed %u, %s\n", seed, qPrintable(finding));
    if (!soak.findings().isEmpty() && !options.isTraced)
        std::printf("       see it happen with --seed %u; %s\n", seed, qPrintable(world.text()));
    if (options.isTraced)
        std::printf("digest %016llx\n", soak.digest());
    result.isGood &= soak.findings().isEmpty();
}

void printProgress(int seeds, const fxsoak::SoakCounts& counts)
{
    std::printf("%6d seeds, %9lld exchanges, %10lld values right, %7lld writes confirmed, %6lld "
                "failed, %8.1f hours, RSS %lld KB\n",
                seeds, counts.ended, counts.valuesRight, counts.writesConfirmed,
                counts.writesFailed, static_cast<double>(counts.simulatedUs) / usPerHour,
                fxsoak::residentBytes() / 1024);
    std::fflush(stdout);
}

Result soakAll(const Options& options)
{
    Result result;
    for (int number = 1; number <= options.seeds; ++number) {
        soakSeed(options.firstSeed + static_cast<unsigned int>(number) - 1, options, result);
        if (number > seedsToSettle)
            result.trend.add(result.counts.ended, fxsoak::residentBytes());
        if (!options.isTraced && number * linesOfProgress % options.seeds < linesOfProgress)
            printProgress(number, result.counts);
    }
    return result;
}

void printCounts(const fxsoak::SoakCounts& counts)
{
    std::printf("writes: %lld confirmed, %lld failed, %lld replaced by later ones, %lld times "
                "carried out and said to be uncertain, none open\n",
                counts.writesConfirmed, counts.writesFailed, counts.writesReplaced,
                counts.writesUncertain);
    std::printf("recipes: %lld done, %lld failed, %lld abandoned; %lld plans; %lld callbacks\n",
                counts.recipesDone, counts.recipesFailed, counts.recipesAbandoned, counts.plans,
                counts.changes);
    std::printf("commands: %lld succeeded, %lld failed; one-off reads: %lld done, %lld failed\n",
                counts.commandsDone, counts.commandsFailed, counts.oneOffsDone,
                counts.oneOffsFailed);
    std::printf("line: %lld frames, %lld exchanges failed, %lld links lost, %lld cut in the middle "
                "of a call to send, %lld in one to receive\n",
                counts.framesSent, counts.failed, counts.linksLost, counts.cutsWhileSending,
                counts.cutsWhileReceiving);
    std::printf("others: %lld times the host was interrupted and started again, %lld power cycles "
                "and %lld stops of the PLC\n",
                counts.restarts, counts.powerCycles, counts.stops);
    std::printf("faults:");
    for (int kind = 0; kind < fxsim::faultKinds; ++kind)
        std::printf(" %s %lld", fxsim::factsOf(static_cast<fxsim::FaultKind>(kind)).name,
                    counts.faults[static_cast<size_t>(kind)]);
    std::printf("\n");
}

bool memoryIsLevel(const fxsoak::MemoryTrend& trend)
{
    std::printf("memory: %+.4f bytes an exchange, %+.0f KB fitted over the run\n",
                trend.bytesAnExchange(), trend.fittedGrowthBytes() / 1024);
    if (!fxsoak::memoryIsWatched())
        return trend.fittedGrowthBytes() < mostGrowthBytes;
    std::printf("memory: not judged, a checker keeps what was freed\n");
    return true;
}

int run(const Options& options)
{
    const Result result = soakAll(options);
    const fxsoak::SoakCounts& counts = result.counts;
    printCounts(counts);
    const bool level = options.isTraced || memoryIsLevel(result.trend);  // a trace repeats itself
    if (!level)
        std::printf("WRONG  memory grows\n");
    const bool good = result.isGood && level;
    std::printf("%s: %d seeds from %u on, %.1f simulated hours, %lld exchanges, %lld values right, "
                "%lld covered by a waiting write, %lld replies with bits flipped and a sum to "
                "match left out\n",
                good ? "good" : "NOT GOOD", options.seeds, options.firstSeed,
                static_cast<double>(counts.simulatedUs) / usPerHour, counts.ended,
                counts.valuesRight, counts.valuesWaiting, counts.sumsForged);
    return good ? 0 : 1;
}

Options parse(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Soaks the driver among troubles of line, PLC and host, on simulated time."));
    parser.addHelpOption();
    parser.addOptions({{"seeds", "how many worlds (default: 1000, half a minute)", "N", "1000"},
                       {"first", "the seed of the first one (default: 1)", "N", "1"},
                       {"exchanges", "of each world, among troubles (default: 1000)", "N", "1000"},
                       {"seed", "this world alone, and everything that happens in it", "N"},
                       {"faults", "as fxsim takes them (default: drawn for each world)", "LIST"}});
    parser.process(application);
    bool isCount = false;
    bool isSeed = false;
    bool isNumber = false;
    Options options;
    options.isTraced = parser.isSet("seed");
    options.seeds = options.isTraced ? 1 : parser.value("seeds").toInt(&isCount);
    options.firstSeed = parser.value(options.isTraced ? "seed" : "first").toUInt(&isSeed);
    options.exchanges = parser.value("exchanges").toLongLong(&isNumber);
    if (parser.isSet("faults"))
        options.faults = fxsim::parseFaults(parser.value("faults"));
    if (!(isCount || options.isTraced) || options.seeds < 1 || !isSeed || !isNumber ||
        options.exchanges < 1 || !parser.positionalArguments().isEmpty())
        throw fxsim::Error(fxsim::ExitCode::Usage, QStringLiteral("every option takes a number"));
    return options;
}

}  // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        return run(parse(application));
    } catch (const fxsim::Error& error) {
        std::fprintf(stderr, "soak: %s\n", error.what());
        return 2;
    } catch (const fxtools::Failure& error) {
        std::fprintf(stderr, "soak: %s\n", error.what());
        return 3;
    }
}
