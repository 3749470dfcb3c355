// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost demo: shows in half a minute, on a simulated PLC, what the driver does.

#include "tools/fxhost/commands/connection.h"
#include "tools/fxhost/demo/demo_bench.h"

#include <memory>

namespace fxtools {

namespace {

constexpr int liveValuesMs = 6000;
constexpr int simulatedBaud = 9600;

struct DemoOptions
{
    bool live = false;
    std::string control;
};

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
