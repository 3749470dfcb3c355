// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// soak: drives the loaded library over a bad line for as many exchanges as asked, and says how it
// went. Exit code 0: every accepted value was right, every write ended, memory did not grow; 1: not
// so; 2: a mistake in the command line; 3: the library could not be loaded.

#include "soak.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr int samplesOfMemory = 200;
constexpr int samplesToSettle = 20;  // the cache is complete and every code path was taken
constexpr int linesOfProgress = 10;
constexpr double mostGrowthBytes = 1024 * 1024;
constexpr double usPerHour = 3600e6;

struct Options
{
    qint64 exchanges;
    unsigned int seed;
    QString faults;
};

void printProgress(const fxsoak::SoakCounts& counts)
{
    std::printf("%10lld exchanges, %11lld values right, %7lld writes confirmed, %5lld failed, "
                "%6lld recipes, RSS %lld KB\n",
                counts.ended, counts.valuesRight, counts.writesConfirmed, counts.writesFailed,
                counts.recipesDone, fxsoak::residentBytes() / 1024);
    std::fflush(stdout);
}

// The trend of memory from the moment on at which everything has been used once.
fxsoak::MemoryTrend soakAll(fxsoak::Soak& soak, qint64 exchanges)
{
    fxsoak::MemoryTrend trend;
    for (int sample = 1; sample <= samplesOfMemory && soak.findings().isEmpty(); ++sample) {
        soak.run(exchanges * sample / samplesOfMemory);
        if (sample > samplesToSettle)
            trend.add(soak.counts().ended, fxsoak::residentBytes());
        if (sample % (samplesOfMemory / linesOfProgress) == 0)
            printProgress(soak.counts());
    }
    soak.finish();
    return trend;
}

void printLine(fxsoak::Soak& soak)
{
    const fxtools::KindCounts frames = soak.line().total();
    std::printf("line: %lld frames, %lld repeats, %lld exchanges failed, %lld links lost, %lld "
                "power cycles, %.1f simulated hours\n",
                frames.sent, frames.repeated, frames.failed, soak.line().linksLost,
                soak.plc().powerCycles, static_cast<double>(soak.simulatedUs()) / usPerHour);
    std::printf("faults:");
    for (int kind = 0; kind < fxsim::faultKinds; ++kind)
        std::printf(" %s %lld", fxsim::factsOf(static_cast<fxsim::FaultKind>(kind)).name,
                    soak.plc().faults[static_cast<size_t>(kind)]);
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

int run(const Options& options, const fxsim::FaultPlan& faults)
{
    const fxtools::DriverLibrary library(FX_DRIVER_FILE);
    fxsoak::Soak soak(library, {options.exchanges, options.seed, faults});
    const fxsoak::MemoryTrend trend = soakAll(soak, options.exchanges);
    const fxsoak::SoakCounts& counts = soak.counts();
    std::printf("writes: %lld confirmed, %lld reported failed, %lld replaced by later ones, none "
                "open; recipes: %lld done, %lld failed; %lld callbacks\n",
                counts.writesConfirmed, counts.writesFailed, soak.writesReplaced(),
                counts.recipesDone, counts.recipesFailed, counts.changes);
    printLine(soak);
    const bool level = memoryIsLevel(trend);
    for (const QString& finding : soak.findings())
        std::printf("WRONG  %s\n", qPrintable(finding));
    if (!level)
        std::printf("WRONG  memory grows\n");
    const bool good = soak.findings().isEmpty() && level;
    std::printf("%s: seed %u, %lld exchanges, %lld values right, %lld covered by a waiting write, "
                "%lld replies with bits flipped and a sum to match left out\n",
                good ? "good" : "NOT GOOD", options.seed, counts.ended, counts.valuesRight,
                counts.valuesWaiting, counts.sumsForged);
    return good ? 0 : 1;
}

Options parse(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Soaks the driver in exchanges over a bad line, on simulated time."));
    parser.addHelpOption();
    parser.addOptions(
        {{"exchanges", "how many (default: a million, half a minute)", "N", "1000000"},
         {"seed", "of everything that is drawn (default: 1)", "N", "1"},
         {"faults", "as fxsim takes them (default: some of each)", "LIST",
          "mixed:900=0.25,power-cycle:300=0.0005,link-drop:300=0.0005"}});
    parser.process(application);
    bool isCount = false;
    bool isSeed = false;
    const Options options{parser.value("exchanges").toLongLong(&isCount),
                          parser.value("seed").toUInt(&isSeed), parser.value("faults")};
    if (!isCount || options.exchanges < 1 || !isSeed || !parser.positionalArguments().isEmpty())
        throw fxsim::Error(fxsim::ExitCode::Usage,
                           QStringLiteral("--exchanges and --seed take a number"));
    return options;
}

}  // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        const Options options = parse(application);
        return run(options, fxsim::parseFaults(options.faults));
    } catch (const fxsim::Error& error) {
        std::fprintf(stderr, "soak: %s\n", error.what());
        return 2;
    } catch (const fxtools::Failure& error) {
        std::fprintf(stderr, "soak: %s\n", error.what());
        return 3;
    }
}
