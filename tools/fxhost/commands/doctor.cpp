// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost doctor: why a PLC does not answer, or how well it does. On a serial port without line
// settings it sends ENQ with one after the other, and reads where something comes back; only where
// nothing does, it asks the likeliest one with patience. It measures the line that works.

#include "tools/fxhost/commands/connection.h"
#include "tools/fxhost/views/command_line.h"

namespace fxtools {

namespace {

// A silent port costs two of the first for each setting and six of the last: eight seconds.
constexpr int enquiryMs = 300;
constexpr int requestMs = 300;
constexpr int patientMs = 700;
constexpr int thoroughMs = 3000;

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

// A serial port for which the user gave no line settings.
const SerialSettings* openPort(const LinkSettings& link)
{
    const auto* const serial = std::get_if<SerialSettings>(&link);
    return serial && !serial->isPseudoTerminal && !serial->line ? serial : nullptr;
}

class Doctor
{
public:
    Doctor(const CommonOptions& common, bool isThorough);

    void examineAll();
    ExitCode report();

private:
    void setPatience(int firstMs);
    void note(const Finding& finding);
    bool isSilent(const QString& setting);
    void examine(const QString& setting);
    void examineTolerantly(const QString& setting);
    void examineEverySetting(const SerialSettings& port);
    bool isSettled() const;
    void drawTable();
    void showRecords() const;
    void showAdvice();

    OutputOptions m_output;
    bool m_forPeople;
    bool m_isTolerant;
    bool m_isThorough;
    bool m_adapts;  // no time-out was given
    ConnectionSettings m_settings;
    QVector<Finding> m_findings;
    Console m_console;
};

Doctor::Doctor(const CommonOptions& common, bool isThorough)
    : m_output(common.output), m_forPeople(common.output.mode == OutputMode::People),
      m_isTolerant(common.tolerant), m_isThorough(isThorough), m_adapts(common.timeoutMs == 0),
      m_settings(connectionSettings(common))
{
    m_settings.session.failLimit = 1;
}

void Doctor::setPatience(int firstMs)
{
    if (m_adapts)
        m_settings.loop.timeout.firstMs = firstMs;
}

void Doctor::note(const Finding& finding)
{
    m_findings.append(finding);
    if (m_forPeople && m_console.isTerminal())
        drawTable();
}

// Nothing comes back from an ENQ: a request would not tell more, but take longer.
bool Doctor::isSilent(const QString& setting)
{
    setPatience(enquiryMs);
    Connection connection(m_settings);
    if (isAnyoneThere(connection.loop()))
        return false;
    Finding finding{m_settings.link, setting, false, false, {}};
    if (connection.loop().isInterrupted())
        finding.check.verdict = ReplyVerdict::Interrupted;
    else if (!connection.link().isOpen())
        finding.check.verdict = ReplyVerdict::LinkLost;
    note(finding);
    return true;
}

void Doctor::examine(const QString& setting)
{
    Connection connection(m_settings);
    connection.loop().onBabble = nullptr;  // the advice tells it
    const Progress progress = progressOf(m_output, QStringLiteral("measuring"));
    note({m_settings.link, setting, true, m_settings.loop.tolerant && !m_isTolerant,
          greetPlc(connection.loop(), connection.catalogue())});
    LineCheck& check = m_findings.last().check;
    if (check.verdict != ReplyVerdict::Good)
        return;
    m_console.endRedraw();
    measureLine(
        connection.loop(), connection.catalogue(), check,
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

// No other setting would tell more.
bool Doctor::isSettled() const
{
    const ReplyVerdict verdict = m_findings.last().check.verdict;
    return verdict == ReplyVerdict::Good || verdict == ReplyVerdict::Refused ||
           verdict == ReplyVerdict::Babble || verdict == ReplyVerdict::Interrupted ||
           verdict == ReplyVerdict::LinkLost;
}

void Doctor::examineEverySetting(const SerialSettings& port)
{
    if (m_forPeople && !m_output.quiet)
        m_console.line(QStringLiteral("Trying the usual line settings; a silent port takes %1 s.")
                           .arg(m_isThorough ? 40 : 8));
    SerialSettings tried = port;
    for (const LineSettings& line : usualLines) {
        tried.line = line;
        m_settings.link = tried;
        const QString setting =
            QStringLiteral("%1 baud %2").arg(line.baud).arg(characterText(line));
        if (m_isThorough || !isSilent(setting)) {
            setPatience(requestMs);
            examineTolerantly(setting);
        }
        if (isSettled())
            return;
    }
    const auto gotNothing = [](const Finding& finding) {
        return finding.check.verdict == ReplyVerdict::Silence;
    };
    if (!std::all_of(m_findings.cbegin(), m_findings.cend(), gotNothing))
        return;
    tried.line = usualLines[0];
    m_settings.link = tried;
    setPatience(m_isThorough ? thoroughMs : patientMs);
    examine(QStringLiteral("9600 baud 7E1, patiently"));
}

// On a terminal the table grows while people wait: a silent line takes time.
void Doctor::drawTable()
{
    Table table({{"setting"}, {"ENQ"}, {"request"}});
    for (const Finding& finding : m_findings)
        table.add({finding.setting, enquiryText(finding), requestText(finding)});
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
                               {"median ms"},
                               {"longest ms"},
                               {"plc"},
                               {"link"},
                               {"meaning"}});
    const QJsonValue none = QJsonValue::Undefined;
    for (const Finding& finding : m_findings) {
        const LineCheck& check = finding.check;
        const auto measured = [&](const QJsonValue& value) {
            return check.measured() > 0 ? value : none;
        };
        const auto milliseconds = [&](qint64 timeUs) {
            return measured(static_cast<double>(timeUs) / 1000);
        };
        records.add({finding.setting, enquiryText(finding), requestText(finding),
                     measured(check.measured()),
                     measured(check.exchanges.value(ReplyVerdict::Good)), measured(check.words()),
                     milliseconds(check.responses.percentileUs(50)),
                     milliseconds(check.responses.largestUs()), check.plc ? plcText(check) : none,
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
        m_console.line("PLC: " + plcText(check));
    if (check.goodPercent() > 0 && !m_output.quiet)
        m_console.paragraph(measurementText(check));
    m_console.paragraph(meaning(best));
    if (check.verdict == ReplyVerdict::Silence && m_findings.size() > 1 && !m_isThorough)
        m_console.paragraph(QStringLiteral("With --thorough, doctor also sends a request with each "
                                           "setting and waits longer: about 40 s."));
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

// What to plug in where is told by the ports that there are.
void showPortsFor(const CommonOptions& common)
{
    const bool isSerial =
        common.link.named && std::holds_alternative<SerialSettings>(*common.link.named);
    if ((isSerial || !common.link.named) && common.output.mode == OutputMode::People)
        showPorts(common.output);
}

ExitCode runDoctor(const CommonOptions& common, bool isThorough)
{
    try {
        demandNamedLink(common);
        Doctor doctor(common, isThorough);
        doctor.examineAll();
        return doctor.report();
    } catch (const Failure&) {
        showPortsFor(common);
        throw;
    }
}

}  // namespace

void addDoctorCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("doctor", "Find out why a PLC does not answer");
    const auto isThorough = std::make_shared<bool>(false);
    command->add_flag("--thorough", *isThorough,
                      "Send a request with every line setting, and wait longer");
    addExamples(*command, {"fxhost doctor"});
    onRun(*command, action, [&common, isThorough] { return runDoctor(common, *isThorough); });
}

}  // namespace fxtools
