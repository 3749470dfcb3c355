// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost doctor: why nothing comes. Tries line settings one after the other on a serial port (only
// what there is on another link), asks the PLC for a sign of life and for two registers, and says
// in plain words what it saw and what to do.

#include "tools/exchange/polling.h"
#include "tools/fxhost/commands/connection.h"

#include <functional>

namespace fxtools {

namespace {

constexpr int patienceMs = 300;

struct Setting
{
    int baud;
    const char* line;
};

// What FX ports speak first, then what people set by mistake.
constexpr Setting settings[] = {{9600, "7E1"},   {19200, "7E1"}, {38400, "7E1"}, {57600, "7E1"},
                                {115200, "7E1"}, {9600, "8N1"},  {9600, "7O1"},  {9600, "7N1"},
                                {9600, "8E1"},   {19200, "8N1"}, {115200, "8N1"}};

struct Finding
{
    QString setting;
    bool answersEnquiry = false;
    ReplyVerdict verdict = ReplyVerdict::Silence;
};

// A serial port whose settings the user left open.
bool mayTrySettings(const CommonOptions& common)
{
    const bool isSerial = common.link.rfind("serial:", 0) == 0;
    const bool isGiven = common.baud > 0 || !common.line.empty() || !common.parity.empty() ||
                         common.link.find('?') != std::string::npos;
    return isSerial && !isGiven;
}

Finding examine(const CommonOptions& common, const QString& setting)
{
    Connection connection(common);
    Finding finding;
    finding.setting = setting;
    finding.answersEnquiry = connection.loop().resynchronise();
    connection.session().setPlan(connection.ranges({"D8000:2"}));
    const std::optional<Exchange> exchange = connection.loop().step();
    if (exchange)
        finding.verdict = exchange->verdict;
    return finding;
}

using OnFinding = std::function<void(const QVector<Finding>&)>;

// `onFinding` gets those so far, one more each time.
QVector<Finding> examineAll(const CommonOptions& common, const OnFinding& onFinding)
{
    CommonOptions patient = common;
    patient.timeoutMs = common.timeoutMs > 0 ? common.timeoutMs : patienceMs;
    patient.retries = 0;
    QVector<Finding> findings;
    if (!mayTrySettings(common)) {
        findings.append(examine(patient, QStringLiteral("the settings given")));
        onFinding(findings);
        return findings;
    }
    for (const Setting& setting : settings) {
        patient.baud = setting.baud;
        patient.line = setting.line;
        findings.append(examine(
            patient,
            QStringLiteral("%1 baud %2").arg(setting.baud).arg(QLatin1String(setting.line))));
        onFinding(findings);
        const ReplyVerdict verdict = findings.last().verdict;
        if (verdict == ReplyVerdict::Good || verdict == ReplyVerdict::Interrupted)
            break;
    }
    return findings;
}

QString advice(const Finding& best)
{
    switch (best.verdict) {
    case ReplyVerdict::Good:
        return "The PLC answers with " + best.setting + ". All is well.";
    case ReplyVerdict::Refused:
        return QStringLiteral(
            "The PLC is there and understands, but refuses D8000: it answers NAK. "
            "Line and wiring are right; ask for a register that it has.");
    case ReplyVerdict::Silence:
    case ReplyVerdict::LinkLost:
        return best.answersEnquiry
                   ? QStringLiteral("The PLC answers ENQ but no request: is another program "
                                    "talking to it, or is it no FX programming port?")
                   : QStringLiteral("Nothing comes at all: is the PLC on, is the cable in the "
                                    "programming port, are sending and receiving lines crossed?");
    case ReplyVerdict::Interrupted:
        return QStringLiteral("Interrupted before anything could be said.");
    case ReplyVerdict::Late:
        return QStringLiteral("The answer is right but late: give more time with --timeout.");
    case ReplyVerdict::HighBits:
        return QStringLiteral("Characters come with bit 7 set: the two ends disagree about data "
                              "bits or parity; FX ports speak 7E1.");
    case ReplyVerdict::Echo:
        return QStringLiteral("What is sent comes back: the adapter echoes, or its sending and "
                              "receiving lines touch.");
    case ReplyVerdict::Incomplete:
    case ReplyVerdict::TooLong:
    case ReplyVerdict::NotAFrame:
    case ReplyVerdict::WrongSum:
        return QStringLiteral("Something answers, but damaged: look for a wrong speed or "
                              "parity, a loose cable or a disturbance.");
    }
    return {};
}

QString linkFor(const CommonOptions& common, const Finding& finding)
{
    const QString link = QString::fromStdString(common.link).section('?', 0, 0);
    return QStringLiteral("Write it as --link '%1?baud=%2&line=%3'.")
        .arg(link, finding.setting.section(' ', 0, 0), finding.setting.section(' ', 2));
}

// A good answer explains most, any answer more than none.
const Finding& mostTelling(const QVector<Finding>& findings)
{
    const Finding* best = &findings.first();
    for (const Finding& finding : findings) {
        if (finding.verdict == ReplyVerdict::Good)
            return finding;
        if (best->verdict == ReplyVerdict::Silence &&
            (finding.verdict != ReplyVerdict::Silence || finding.answersEnquiry))
            best = &finding;
    }
    return *best;
}

QString enquiryText(const Finding& finding)
{
    return finding.answersEnquiry ? QStringLiteral("answered") : QStringLiteral("no answer");
}

// The table grows on a terminal, where people wait for it: a silent line takes its time.
void drawTable(Console& console, const QVector<Finding>& findings, bool quiet)
{
    Table table({{"setting"}, {"enquiry"}, {"request"}});
    for (const Finding& finding : findings)
        table.add({finding.setting, enquiryText(finding), verdictText(finding.verdict)});
    console.redraw(table.lines().mid(quiet ? 1 : 0));
}

void showRecords(const OutputOptions& output, const QVector<Finding>& findings)
{
    Records records(output, {{"setting"}, {"enquiry"}, {"request"}, {"meaning"}});
    for (const Finding& finding : findings)
        records.add(
            {finding.setting, enquiryText(finding), verdictText(finding.verdict), advice(finding)});
    records.finish();
}

void showAdvice(Console& console, const CommonOptions& common, const QVector<Finding>& findings)
{
    const Finding& best = mostTelling(findings);
    console.line();
    console.line(advice(best));
    if (findings.size() > 1 && best.verdict == ReplyVerdict::Good)
        console.line(linkFor(common, best));
}

ExitCode runDoctor(const CommonOptions& common)
{
    Console console;
    const bool forPeople = common.output.mode == OutputMode::People;
    const auto draw = [&](const QVector<Finding>& soFar) {
        if (forPeople && console.isTerminal())
            drawTable(console, soFar, common.output.quiet);
    };
    const QVector<Finding> findings = examineAll(common, draw);
    if (!forPeople)
        showRecords(common.output, findings);
    else if (!console.isTerminal())
        drawTable(console, findings, common.output.quiet);
    console.endRedraw();
    if (forPeople)
        showAdvice(console, common, findings);
    const bool isInterrupted = findings.last().verdict == ReplyVerdict::Interrupted;
    return isInterrupted ? ExitCode::Interrupted : exitCodeOf(mostTelling(findings).verdict);
}

}  // namespace

void addDoctorCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("doctor", "Find out why a PLC does not answer");
    addExamples(*command, {"fxhost doctor"});
    command->callback([&] { action = [&common] { return runDoctor(common); }; });
}

}  // namespace fxtools
