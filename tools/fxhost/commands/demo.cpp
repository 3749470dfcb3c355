// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost demo: shows in half a minute, on a simulated PLC, what the driver does.

#include "tools/fxhost/commands/connection.h"
#include "tools/fxhost/demo/demo_bench.h"
#include "tools/fxhost/views/statistics_report.h"
#include "tools/library/addresses.h"

namespace fxtools {

namespace {

struct ScreenRow
{
    const char* address;
    const char* label;
    bool isSigned;
};

// A screen as panel designers make them: some registers of every type, some with neighbouring
// addresses, some far apart. The sample program of the simulated PLC works on the first numbers of
// each type; M100, D120 and 32CV201 belong to the host.
constexpr ScreenRow screenRows[] = {
    {"X0:8", "inputs, toggling", false},
    {"Y0:4", "outputs of the timers", false},
    {"M0:8", "running light", false},
    {"M100:4", "push buttons of the panel", false},
    {"SM8000:4", "system flags", false},
    {"S0:8", "steps", false},
    {"T0:4", "timer contacts", false},
    {"C0:2", "counter contacts", false},
    {"D0", "seconds", false},
    {"D1", "triangle", false},
    {"D2", "sine", true},
    {"D3", "sawtooth", false},
    {"D120", "set point of the panel", false},
    {"SD8000:2", "system registers", false},
    {"TV0:4", "timers, tenths of a second", false},
    {"CV0:2", "counters", false},
    {"32CV200", "fast counter", false},
    {"32CV201", "counter set by the panel", false},
};

constexpr int liveValuesMs = 6000;
constexpr int simulatedBaud = 9600;

struct DemoOptions
{
    bool live = false;
    std::string control;
};

void showSummary(DemoBench& bench)
{
    bench.console.heading("Summary");
    bench.console.lines(statisticsLines(bench.loop.statistics(), bench.loop.elapsedUs()));
    const auto of = [](const char* text, int part, int all) {
        return QString(text).arg(part).arg(all);
    };
    const QString result =
        bench.wasCutShort()
            ? of("Interrupted after %1 of %2 checks.", bench.judged(), bench.checks())
        : bench.refuted > 0
            ? of("%1 of %2 checks failed.", bench.refuted, bench.judged())
            : QStringLiteral("All %1 checks passed: the values read back are the values written.")
                  .arg(bench.confirmed);
    const bool isGood = bench.refuted == 0 && !bench.wasCutShort();
    bench.console.line();
    bench.console.line(isGood ? bench.console.good(result) : bench.console.bad(result));
}

void showChapters(DemoBench& bench, bool live)
{
    using Chapter = std::function<void(DemoBench&)>;
    const Chapter chapters[] = {showRegisterTypes,
                                showPlan,
                                [](DemoBench& b) { showLiveValues(b, liveValuesMs); },
                                showWrites,
                                showConditionalRead,
                                showRecipe,
                                showTrouble};
    for (const Chapter& chapter : chapters) {
        if (bench.goesOn())
            chapter(bench);
    }
    bench.confirm(bench.linkIsGood(), "the link stayed open to the end");
    if (live && bench.goesOn())
        showLiveValues(bench, -1);
    showSummary(bench);
}

ExitCode runDemo(const CommonOptions& common, const DemoOptions& options)
{
    Connection connection(connectionSettings(common, SimulatedSettings{{}, simulatedBaud, {}}));
    connection.loop().onLinkLost = nullptr;  // a lost link is a finding of the demo
    std::optional<SocketBenchControl> socket;
    if (!options.control.empty())
        socket.emplace(QString::fromStdString(options.control));
    DemoBench bench(connection.loop(), connection.catalogue(),
                    socket ? &*socket : connection.control());
    bench.console.line(QStringLiteral("driver %1\nlink   %2, property string \"%3\"")
                           .arg(connection.library().fileName(), connection.link().name(),
                                connection.session().propertyString()));
    showChapters(bench, options.live);
    if (bench.wasCutShort())
        return ExitCode::Interrupted;
    return bench.refuted > 0 ? ExitCode::SomeFailed : ExitCode::Good;
}

}  // namespace

DemoBench::DemoBench(ExchangeLoop& exchangeLoop, const RegisterCatalogue& registerTypes,
                     BenchControl* benchControl)
    : loop(exchangeLoop), session(loop.session()), catalogue(registerTypes), control(benchControl)
{
    QVector<RegisterRange> ranges;
    for (const ScreenRow& row : screenRows) {
        ranges.append(range(row.address));
        screen.append({ranges.last(), row.label, row.isSigned});
    }
    session.onValueChanged = [this](const QString&, int, int) { ++valuesChanged; };
    blocks = session.setPlan(ranges);
}

RegisterRange DemoBench::range(const QString& address) const
{
    return parseAddress(address, catalogue);
}

quint32 DemoBench::valueOf(const QString& address) const
{
    return session.values(range(address)).value(0);
}

bool DemoBench::linkIsGood() const
{
    const bool wasAsked = loop.statistics().total().sent > 0;
    return loop.link().isOpen() && (!wasAsked || loop.statistics().plcHasAnswered());
}

void DemoBench::confirm(bool isSo, const QString& what)
{
    if (loop.isInterrupted())
        return;
    ++(isSo ? confirmed : refuted);
    console.line("  " + (isSo ? console.good("✔") : console.bad("✘")) + ' ' + what);
}

void addDemoCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("demo", "Demonstrate the driver on a simulated PLC");
    const auto options = std::make_shared<DemoOptions>();
    command->add_flag("--live", options->live, "Then show live values until Ctrl-C");
    command
        ->add_option("--control", options->control,
                     "Control socket of the simulator, if it is another process")
        ->type_name("PATH");
    addExamples(*command, {"fxhost demo"});
    onRun(*command, action, [&common, options] { return runDemo(common, *options); });
}

}  // namespace fxtools
