// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost doctor: why a PLC does not answer, or how well it does. Tries a serial port with one line
// setting after the other, measures the line with the one that works, and says what it found, what
// to do, and with which link to go on.

#include "tools/exchange/line_check.h"
#include "tools/fxhost/commands/connection.h"
#include "tools/fxhost/commands/progress.h"
#include "tools/quoted.h"

namespace fxtools {

namespace {

constexpr int patienceMs = 300;       // with each of many settings
constexpr int lastPatienceMs = 3000;  // when all were silent
constexpr int slowReplyMs = 1000;     // slower ones need a longer time-out from the start

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
    LineCheck check;
    bool needsTolerance = false;  // more than the user said
};

// A serial port for which the user gave no line settings.
const SerialSettings* openPort(const LinkSettings& link)
{
    const auto* const serial = std::get_if<SerialSettings>(&link);
    return serial && !serial->isPseudoTerminal && !serial->line ? serial : nullptr;
}

bool plcIsThere(ReplyVerdict verdict)
{
    return verdict == ReplyVerdict::Good || verdict == ReplyVerdict::Refused;
}

class Doctor
{
public:
    explicit Doctor(const CommonOptions& common);

    void examineAll();
    ExitCode report();

private:
    void examine(const QString& setting);
    void examineTolerantly(const QString& setting);
    void examineEverySetting(const SerialSettings& port);
    void drawTable();
    void showRecords() const;
    void showAdvice();

    OutputOptions m_output;
    bool m_forPeople;
    bool m_isTolerant;
    ConnectionSettings m_settings;
    QVector<Finding> m_findings;
    Console m_console;
};

Doctor::Doctor(const CommonOptions& common)
    : m_output(common.output), m_forPeople(common.output.mode == OutputMode::People),
      m_isTolerant(common.tolerant), m_settings(connectionSettings(common))
{
    m_settings.session.failLimit = 1;
    if (common.timeoutMs == 0 && openPort(m_settings.link))
        m_settings.loop.timeout.firstMs = patienceMs;
}

void Doctor::examine(const QString& setting)
{
    Connection connection(m_settings);
    connection.loop().onBabble = nullptr;  // the advice tells it
    const Progress progress = progressOf(m_output, QStringLiteral("measuring"));
    m_findings.append(
        {m_settings.link, setting, greetPlc(connection.loop(), connection.catalogue())});
    if (m_forPeople && m_console.isTerminal())
        drawTable();
    Finding& finding = m_findings.last();
    finding.needsTolerance = m_settings.loop.tolerant && !m_isTolerant;
    if (finding.check.verdict != ReplyVerdict::Good)
        return;
    m_console.endRedraw();
    measureLine(
        connection.loop(), connection.catalogue(), finding.check,
        m_console.isTerminal() ? progress : [](int, int) {});
}

// Again if the replies are right but for extra characters.
void Doctor::examineTolerantly(const QString& setting)
{
    examine(setting);
    if (m_findings.last().check.verdict != ReplyVerdict::Surrounded || m_settings.loop.tolerant)
        return;
    m_settings.loop.tolerant = true;
    examine(setting + ", --tolerant");
}

void Doctor::examineAll()
{
    const LinkSettings asked = m_settings.link;
    const SerialSettings* const port = openPort(asked);
    try {
        if (port)
            examineEverySetting(*port);
        else
            examineTolerantly(QStringLiteral("settings as given"));
    } catch (const Failure& failure) {
        if (m_findings.isEmpty())
            throw;
        complain(failure.text());  // the port went away: what was found so far still counts
        m_findings.last().check.verdict = ReplyVerdict::LinkLost;
    }
}

void Doctor::examineEverySetting(const SerialSettings& port)
{
    SerialSettings tried = port;
    for (const LineSettings& line : usualLines) {
        tried.line = line;
        m_settings.link = tried;
        examineTolerantly(QStringLiteral("%1 baud %2").arg(line.baud).arg(characterText(line)));
        const ReplyVerdict verdict = m_findings.last().check.verdict;
        if (plcIsThere(verdict) || verdict == ReplyVerdict::Interrupted ||
            verdict == ReplyVerdict::LinkLost)
            return;
    }
    const auto isSilent = [](const Finding& finding) {
        return finding.check.verdict == ReplyVerdict::Silence;
    };
    if (!std::all_of(m_findings.cbegin(), m_findings.cend(), isSilent))
        return;
    tried.line = usualLines[0];
    m_settings.link = tried;
    m_settings.loop.timeout.firstMs = lastPatienceMs;
    examine(QStringLiteral("9600 baud 7E1, patiently"));
}

QString advice(ReplyVerdict verdict, const LineCheck& check)
{
    switch (verdict) {
    case ReplyVerdict::Good:
        return {};
    case ReplyVerdict::Refused:
        return QStringLiteral("The PLC answers, but refuses the request (NAK). Line settings and "
                              "wiring are correct. Try to read another register.");
    case ReplyVerdict::Silence:
        return check.answersEnquiry
                   ? QStringLiteral("The PLC answers ENQ but no request. Is another program "
                                    "using this port? Is it an FX programming port?")
                   : QStringLiteral("No reply at all. Is the PLC on? Is the cable in the "
                                    "programming port? Are the send and receive lines swapped?");
    case ReplyVerdict::LinkLost:
        return QStringLiteral("The link was lost. Was the adapter unplugged, or did the server "
                              "close the connection?");
    case ReplyVerdict::Interrupted:
        return QStringLiteral("Interrupted before there was a result.");
    case ReplyVerdict::Late:
        return QStringLiteral("The replies are right but late. Set a longer --timeout, or none: "
                              "then it adapts.");
    case ReplyVerdict::HighBits:
        return QStringLiteral("Received characters have bit 7 set: the data bits or the parity "
                              "of the two ends differ. FX ports use 7E1.");
    case ReplyVerdict::Echo:
        return QStringLiteral("The request comes back. Either the adapter echoes, or its send and "
                              "receive lines are connected.");
    case ReplyVerdict::Surrounded:
        return QStringLiteral("Exactly one right reply stands among extra characters. Check the "
                              "converter on this line; --tolerant takes such replies.");
    case ReplyVerdict::Babble:
        return "Something on this line sends by itself: " +
               quoted(QString::fromLatin1(check.unasked).simplified()) +
               ". Is it a scale or a code reader? Is it the right port?";
    case ReplyVerdict::Incomplete:
    case ReplyVerdict::TooLong:
    case ReplyVerdict::NotAFrame:
    case ReplyVerdict::WrongSum:
        return QStringLiteral("Replies are damaged. Check the baud rate, the parity and the "
                              "cable, and look for electrical interference.");
    }
    return {};
}

// All that there is to say of a setting. "All is well" stands for a line without any fault.
QString meaning(const Finding& finding)
{
    const LineCheck& check = finding.check;
    if (check.verdict != ReplyVerdict::Good)
        return advice(check.verdict, check);
    if (check.wentSilent)
        return "The PLC answered (" + finding.setting +
               "), then no more. Was it switched off, or is a plug loose?";
    QStringList troubles;
    if (finding.needsTolerance)
        troubles += advice(ReplyVerdict::Surrounded, check);
    if (check.worst() != ReplyVerdict::Good) {
        troubles += QStringLiteral("Only %1 % of %2 exchanges were good; most often: %3. %4")
                        .arg(check.goodPercent())
                        .arg(check.measured())
                        .arg(verdictText(check.worst()), advice(check.worst(), check));
    }
    if (!check.blocks.isEmpty() && check.blocks.last().verdict != ReplyVerdict::Good) {
        troubles += QStringLiteral("Blocks of %1 bytes fail (%2): use at most %3 words in a frame.")
                        .arg(check.blocks.last().byteCount)
                        .arg(verdictText(check.blocks.last().verdict))
                        .arg(check.words());
    }
    if (!check.unasked.isEmpty())
        troubles += advice(ReplyVerdict::Babble, check);
    const QString answers = "The PLC answers (" + finding.setting + "). ";
    return answers + (troubles.isEmpty() ? QStringLiteral("All is well.") : troubles.join(' '));
}

// A good reply explains most, and any reply explains more than silence.
const Finding& mostTelling(const QVector<Finding>& findings)
{
    const Finding* best = &findings.first();
    for (const Finding& finding : findings) {
        if (plcIsThere(finding.check.verdict))
            return finding;
        if (best->check.verdict == ReplyVerdict::Silence &&
            (finding.check.verdict != ReplyVerdict::Silence || finding.check.answersEnquiry))
            best = &finding;
    }
    return *best;
}

// The command line that works, for a person to copy.
QString commandLine(const Finding& finding)
{
    LinkSettings link = finding.link;
    const LineCheck& check = finding.check;
    if (!check.blocks.isEmpty() && check.blocks.last().verdict != ReplyVerdict::Good)
        plcSettings(link).words = std::max(check.words(), leastWordsPerFrame);
    QString line = "fxhost --link '" + linkText(link) + '\'';
    const qint64 slowestMs = check.responses.largestUs() / 1000;
    if (slowestMs > slowReplyMs)
        line += QStringLiteral(" --timeout %1").arg((2 * slowestMs + 99) / 100 * 100);
    if (finding.needsTolerance || check.worst() == ReplyVerdict::Surrounded)
        line += QStringLiteral(" --tolerant");
    return line + " read D0:8";
}

QString plcText(const LineCheck& check)
{
    if (!check.plc)
        return {};
    return QStringLiteral("type %1, version %2.%3, %4%5%6")
        .arg(check.plc->type)
        .arg(check.plc->version / 100)
        .arg(check.plc->version % 100, 2, 10, QLatin1Char('0'))
        .arg(check.plc->isRunning ? "running" : "stopped", check.plc->hasError ? ", error" : "",
             check.plc->hasLowBattery ? ", battery low" : "");
}

QString enquiryText(const Finding& finding)
{
    return finding.check.answersEnquiry ? QStringLiteral("answered") : QStringLiteral("no answer");
}

// On a terminal the table grows while people wait: a silent line takes time.
void Doctor::drawTable()
{
    Table table({{"setting"}, {"enquiry"}, {"request"}});
    for (const Finding& finding : m_findings)
        table.add({finding.setting, enquiryText(finding), verdictText(finding.check.verdict)});
    m_console.redraw(table.lines().mid(m_output.quiet ? 1 : 0));
}

void Doctor::showRecords() const
{
    Records records(m_output, {{"setting"},
                               {"enquiry"},
                               {"request"},
                               {"exchanges"},
                               {"good"},
                               {"words"},
                               {"plc"},
                               {"link"},
                               {"meaning"}});
    const QJsonValue none = QJsonValue::Undefined;
    for (const Finding& finding : m_findings) {
        const LineCheck& check = finding.check;
        const bool isMeasured = check.measured() > 0;
        records.add({finding.setting, enquiryText(finding), verdictText(check.verdict),
                     isMeasured ? check.measured() : none,
                     isMeasured ? check.exchanges.value(ReplyVerdict::Good) : none,
                     isMeasured ? check.words() : none, check.plc ? plcText(check) : none,
                     linkText(finding.link), meaning(finding)});
    }
    records.finish();
}

void Doctor::showAdvice()
{
    const Finding& best = mostTelling(m_findings);
    const LineCheck& check = best.check;
    m_console.line();
    if (check.plc)
        m_console.line("  PLC: " + plcText(check));
    if (check.goodPercent() > 0 && !m_output.quiet) {
        m_console.line(QStringLiteral("  %1 of %2 exchanges good; response: typically %3 ms, at "
                                      "most %4 ms")
                           .arg(check.exchanges.value(ReplyVerdict::Good))
                           .arg(check.measured())
                           .arg(check.responses.percentileUs(50) / 1000)
                           .arg(check.responses.largestUs() / 1000));
    }
    m_console.line(meaning(best));
    if (check.goodPercent() > 0)
        m_console.line("To go on:\n  " + commandLine(best));
}

ExitCode Doctor::report()
{
    if (!m_forPeople)
        showRecords();
    else if (!m_console.isTerminal())
        drawTable();
    m_console.endRedraw();
    if (m_forPeople)
        showAdvice();
    if (m_findings.last().check.verdict == ReplyVerdict::Interrupted)
        return ExitCode::Interrupted;
    const Finding& best = mostTelling(m_findings);
    const LineCheck& check = best.check;
    if (check.verdict != ReplyVerdict::Good)
        return exitCodeOf(check.verdict);
    if (best.needsTolerance)
        return exitCodeOf(ReplyVerdict::Surrounded);
    if (check.wentSilent || check.goodPercent() == 0)
        return exitCodeOf(check.wentSilent ? ReplyVerdict::Silence : check.worst());
    return check.worst() == ReplyVerdict::Good ? ExitCode::Good : ExitCode::SomeFailed;
}

ExitCode runDoctor(const CommonOptions& common)
{
    demandNamedLink(common);
    Doctor doctor(common);
    doctor.examineAll();
    return doctor.report();
}

}  // namespace

void addDoctorCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("doctor", "Find out why a PLC does not answer");
    addExamples(*command, {"fxhost doctor"});
    command->callback([&] { action = [&common] { return runDoctor(common); }; });
}

}  // namespace fxtools
