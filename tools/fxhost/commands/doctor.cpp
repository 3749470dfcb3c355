// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost doctor: why a PLC does not answer. Sends ENQ and reads two registers, on a serial port
// with one line setting after the other, and says what it found and what to do.

#include "tools/exchange/polling.h"
#include "tools/fxhost/commands/connection.h"
#include "tools/library/addresses.h"

#include <functional>

namespace fxtools {

namespace {

constexpr int patienceMs = 300;

// The settings of FX ports first, then common mistakes.
constexpr LineSettings usualLines[] = {
    {9600},
    {19200},
    {38400},
    {57600},
    {115200},
    {9600, QSerialPort::Data8, QSerialPort::NoParity},
    {9600, QSerialPort::Data7, QSerialPort::OddParity},
    {9600, QSerialPort::Data7, QSerialPort::NoParity},
    {9600, QSerialPort::Data8, QSerialPort::EvenParity},
    {19200, QSerialPort::Data8, QSerialPort::NoParity},
    {115200, QSerialPort::Data8, QSerialPort::NoParity},
};

struct Finding
{
    LinkSettings link;
    QString setting;
    bool answersEnquiry = false;
    ReplyVerdict verdict = ReplyVerdict::Silence;
};

// A serial port for which the user gave no line settings.
const SerialSettings* openPort(const LinkSettings& link)
{
    const auto* const serial = std::get_if<SerialSettings>(&link);
    return serial && !serial->isPseudoTerminal && !serial->line ? serial : nullptr;
}

Finding examine(const ConnectionSettings& settings, const QString& setting)
{
    Connection connection(settings);
    Finding finding;
    finding.link = settings.link;
    finding.setting = setting;
    finding.answersEnquiry = connection.loop().resynchronise();
    connection.session().setPlan({parseAddress(QStringLiteral("D8000:2"), connection.catalogue())});
    const std::optional<Exchange> exchange = connection.loop().step();
    if (exchange)
        finding.verdict = exchange->verdict;
    return finding;
}

using OnFinding = std::function<void(const QVector<Finding>&)>;

ConnectionSettings doctorSettings(const CommonOptions& common)
{
    ConnectionSettings settings = connectionSettings(common);
    if (common.timeoutMs == 0)
        settings.loop.timeout = TimeoutLimits::fixed(patienceMs);
    settings.session.failLimit = 1;
    return settings;
}

// Calls `onFinding` with all findings so far after each one.
QVector<Finding> examineAll(const CommonOptions& common, const OnFinding& onFinding)
{
    ConnectionSettings settings = doctorSettings(common);
    const SerialSettings* const port = openPort(settings.link);
    QVector<Finding> findings;
    if (!port) {
        findings.append(examine(settings, QStringLiteral("settings as given")));
        onFinding(findings);
        return findings;
    }
    const QString path = port->path;
    for (const LineSettings& line : usualLines) {
        settings.link = SerialSettings{{}, path, false, line};
        findings.append(examine(
            settings, QStringLiteral("%1 baud %2").arg(line.baud).arg(characterText(line))));
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
        return "The PLC answers (" + best.setting + "). All is well.";
    case ReplyVerdict::Refused:
        return QStringLiteral(
            "The PLC answers, but refuses to read D8000 (NAK). Line settings and wiring are "
            "correct. Try to read another register.");
    case ReplyVerdict::Silence:
    case ReplyVerdict::LinkLost:
        return best.answersEnquiry
                   ? QStringLiteral("The PLC answers ENQ but no request. Is another program "
                                    "using this port? Is it an FX programming port?")
                   : QStringLiteral("No reply at all. Is the PLC on? Is the cable in the "
                                    "programming port? Are the send and receive lines swapped?");
    case ReplyVerdict::Interrupted:
        return QStringLiteral("Interrupted before there was a result.");
    case ReplyVerdict::Late:
        return QStringLiteral("The reply is correct but late. Set a longer --timeout.");
    case ReplyVerdict::HighBits:
        return QStringLiteral("Received characters have bit 7 set: the data bits or the parity "
                              "of the two ends differ. FX ports use 7E1.");
    case ReplyVerdict::Echo:
        return QStringLiteral("The request comes back. Either the adapter echoes, or its send and "
                              "receive lines are connected.");
    case ReplyVerdict::Incomplete:
    case ReplyVerdict::TooLong:
    case ReplyVerdict::NotAFrame:
    case ReplyVerdict::Surrounded:
    case ReplyVerdict::Babble:
    case ReplyVerdict::WrongSum:
        return QStringLiteral("Replies are damaged. Check the baud rate, the parity and the "
                              "cable, and look for electrical interference.");
    }
    return {};
}

// A good reply explains most, and any reply explains more than silence.
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

// On a terminal the table grows while people wait: a silent line takes time.
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

void showAdvice(Console& console, const QVector<Finding>& findings)
{
    const Finding& best = mostTelling(findings);
    console.line();
    console.line(advice(best));
    if (findings.size() > 1 && best.verdict == ReplyVerdict::Good)
        console.line(QStringLiteral("Use it with --link '%1'.").arg(linkText(best.link)));
}

ExitCode runDoctor(const CommonOptions& common)
{
    demandNamedLink(common);
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
        showAdvice(console, findings);
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
