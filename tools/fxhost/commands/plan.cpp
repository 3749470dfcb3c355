// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost plan: what polling a set of addresses costs with the driver's own plan and with the
// shortest one: their blocks, the registers in them that were not asked for, the cycle time at
// usual baud rates, and a picture of the memory. Needs no PLC.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/cycles.h"
#include "tools/fxhost/views/plan_report.h"
#include "tools/library/output_file.h"

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr int mostSavings = 500;

struct PlanOptions
{
    AddressOptions addresses;
    double turnaroundMs = double(LineCost().turnaroundUs) / 1000;
    std::string svg;
    bool force = false;
};

// --baud is a speed to compute with, also for links that have none.
LineCost lineOf(const CommonOptions& common, const ConnectionSettings& settings,
                double turnaroundMs)
{
    const int baud = common.link.baud > 0 ? common.link.baud : baudOf(settings.link);
    return {std::llround(1000 * turnaroundMs), baud};
}

std::vector<int> speedsWith(int baud)
{
    std::vector<int> speeds = {9600, 19200, 38400, 115200};
    const auto place = std::lower_bound(speeds.begin(), speeds.end(), baud);
    if (place == speeds.end() || *place != baud)
        speeds.insert(place, baud);
    return speeds;
}

// Lets types come in the order of another plan.
void takeOrder(const QVector<PlannedBlock>& other, QVector<PlannedBlock>& blocks)
{
    const auto place = [&other](const PlannedBlock& block) {
        return std::find_if(other.begin(), other.end(), [&block](const PlannedBlock& one) {
            return one.registers.type.name == block.registers.type.name &&
                   one.registers.station == block.registers.station;
        });
    };
    std::stable_sort(blocks.begin(), blocks.end(),
                     [&place](const PlannedBlock& one, const PlannedBlock& two) {
                         return place(one) < place(two);
                     });
}

// Plans the same registers in both ways.
class BothPlans
{
public:
    BothPlans(const AddressServices& services, const QVector<Tag>& asked,
              const SessionSettings& settings)
        : m_catalogue(services.catalogue), m_asked(rangesOf(asked)),
          m_words(settings.wordsPerFrame), m_session(services.library, {1, settings.wordsPerFrame})
    {
        for (const Tag& one : asked) {
            m_names += askedName(one);
            if (one.asked.range.together > 1)
                requireOneReply(one.asked.range, m_words);
        }
    }

    PlanReport report(const LineCost& line)
    {
        PlanReport report = {line, given(line), shortest(line), savings(line)};
        takeOrder(report.given.blocks, report.shortest.blocks);
        return report;
    }

private:
    ReportedPlan given(const LineCost& line)
    {
        ReportedPlan plan = {QStringLiteral("given"), {}, {}};
        for (const FRAME_PRO& frame : planOf(m_session, m_asked)) {
            const RegisterRange block = blockRange(m_catalogue, frame.variable);
            plan.blocks.append({block, dueWithin(m_asked, block)});
        }
        for (const int baud : speedsWith(line.baud)) {
            const LineCost at = {line.turnaroundUs, baud};
            plan.cycleMs.append({baud, milliseconds(costOf(plan.blocks, at), at)});
        }
        return plan;
    }

    // At each speed another plan may be the shortest; the blocks are those at the speed of the
    // line.
    ReportedPlan shortest(const LineCost& line) const
    {
        ReportedPlan plan = {QStringLiteral("shortest"), shortestPlan(m_asked, m_words, line), {}};
        for (const int baud : speedsWith(line.baud)) {
            const LineCost at = {line.turnaroundUs, baud};
            plan.cycleMs.append({baud, cycleMs(m_asked, at)});
        }
        return plan;
    }

    double cycleMs(const QVector<RegisterRange>& due, const LineCost& line) const
    {
        return milliseconds(costOf(shortestPlan(due, m_words, line), line), line);
    }

    // The largest ones first; none where only one address was asked for, or too many, because each
    // takes a plan of its own.
    QVector<PlanSaving> savings(const LineCost& line) const
    {
        const double all = cycleMs(m_asked, line);
        QVector<PlanSaving> savings;
        if (m_asked.size() < 2 || m_asked.size() > mostSavings)
            return savings;
        for (int index = 0; index < m_asked.size(); ++index) {
            QVector<RegisterRange> others = m_asked;
            others.removeAt(index);
            savings.append({m_names[index], all - cycleMs(others, line)});
        }
        std::stable_sort(
            savings.begin(), savings.end(),
            [](const PlanSaving& one, const PlanSaving& other) { return one.ms > other.ms; });
        return savings;
    }

    const RegisterCatalogue& m_catalogue;
    QVector<RegisterRange> m_asked;
    QStringList m_names;
    int m_words;
    DriverSession m_session;
};

void addBlocks(Records& records, const QString& name, const ReportedPlan& plan,
               const LineCost& line)
{
    for (const PlannedBlock& block : plan.blocks) {
        QStringList which;
        int unasked = 0;
        for (const RegisterRange& run : unaskedRuns(block)) {
            which += fromToText(run);
            unasked += run.count;
        }
        records.add({name, fromToText(block.registers), block.registers.count, block.bytes(),
                     block.characters(),
                     std::round(milliseconds(exchangeCost(line, block.bytes()), line)), unasked,
                     which.join(QStringLiteral(", "))});
    }
}

void showBlocks(const OutputOptions& output, const PlanReport& report)
{
    Records records(output, {{"plan"},
                             {"block"},
                             {"registers", Align::Right},
                             {"bytes", Align::Right},
                             {"characters", Align::Right},
                             {"ms", Align::Right},
                             {"unasked", Align::Right},
                             {"which"}});
    const bool isOne = output.mode == OutputMode::People && report.areAlike();
    addBlocks(records, isOne ? QStringLiteral("both") : report.given.name, report.given,
              report.line);
    if (!isOne)
        addBlocks(records, report.shortest.name, report.shortest, report.line);
    records.finish();
}

void show(const OutputOptions& output, const PlanReport& report)
{
    Console console;
    if (output.mode == OutputMode::Json)
        return console.line(planReportJson(report));
    showBlocks(output, report);
    if (output.mode != OutputMode::People || output.quiet)
        return;
    console.line();
    console.lines(planPicture(report));
    console.line();
    console.lines(planReportLines(report));
}

ExitCode runPlan(const CommonOptions& common, const PlanOptions& options)
{
    const AddressServices services = addressServices(common);
    CommonOptions withoutBaud = common;
    withoutBaud.link.baud = 0;
    const ConnectionSettings settings = connectionSettings(withoutBaud);
    BothPlans plans(services, askedOf(options.addresses, services), settings.session);
    const PlanReport report = plans.report(lineOf(common, settings, options.turnaroundMs));
    if (!options.svg.empty()) {
        OutputFile file(QString::fromStdString(options.svg),
                        options.force ? OutputFile::Mode::Replace : OutputFile::Mode::New,
                        services.catalogue);
        file.write(planPictureSvg(report));
        file.commit();
        if (file.isStandardOutput())
            return ExitCode::Good;
    }
    show(common.output, report);
    return ExitCode::Good;
}

}  // namespace

void addPlanCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("plan", "Compare polling plans for addresses");
    const auto options = std::make_shared<PlanOptions>();
    addAddressOptions(*command, options->addresses);
    addTurnaroundOption(*command, options->turnaroundMs, "20");
    command
        ->add_option("--svg", options->svg,
                     "Draw the memory that is read in FILE; - is standard output")
        ->type_name("FILE");
    command->add_flag("--force", options->force, "Replace an existing file");
    addExamples(*command,
                {"fxhost plan D100:10 D105:20 D140:5 M5 M20:3",
                 "fxhost plan D0 D30 D60 D90 --baud 19200 --turnaround 12 --svg plan.svg"});
    onRun(*command, action, [&common, options] { return runPlan(common, *options); });
}

}  // namespace fxtools
