// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The options that may stand before or after every command: the link, and the form of what is
// printed. Then which PLC is meant, and the settings of its link with the options that override
// them.

#include "tools/fxhost/commands/command.h"
#include "tools/quoted.h"
#include "tools/service/configuration.h"

#include <QFile>

namespace fxtools {

namespace {

const char* const linkGroup = "Link";
const char* const outputGroup = "Output";

void addNamingOptions(CLI::App& app, LinkOptions& options)
{
    CLI::Option* const link =
        app.add_option("--link", options.link,
                       "serial:PATH?baud=9600, tcp:HOST:PORT, pty:PATH or sim: "
                       "(default: FX_LINK, then the configuration file, then sim:)")
            ->type_name("LINK")
            ->check(notEmpty())
            ->group(linkGroup);
    app.add_option("--plc", options.plc, "The link of this name in the configuration file")
        ->type_name("NAME")
        ->check(notEmpty())
        ->excludes(link)
        ->group(linkGroup);
    app.add_option("--config", options.config,
                   "Configuration file (default: ~/.config/fxhost/config.toml)")
        ->type_name("FILE")
        ->check(notEmpty())
        ->group(linkGroup);
}

void addTagsOption(CLI::App& app, CommonOptions& common)
{
    app.add_option("--tags", common.tags,
                   "Tag file: names for addresses (default: that of the configuration file)")
        ->type_name("FILE")
        ->check(notEmpty())
        ->group(linkGroup);
}

void addLineOptions(CLI::App& app, LinkOptions& options)
{
    app.add_option("-b,--baud", options.baud, "Baud rate of a serial port or of sim:")
        ->type_name("BAUD")
        ->check(within({50, 4000000}))
        ->group(linkGroup);
    app.add_option("-P,--parity", options.parity, "Parity of a serial port: even, odd or none")
        ->type_name("PARITY")
        ->group(linkGroup);
    app.add_option("--line", options.line,
                   "Data bits, parity and stop bits of a serial port (default: 7E1)")
        ->type_name("7E1")
        ->group(linkGroup);
    app.add_option("-p,--port", options.port, "Port of a TCP link (default: 8888)")
        ->type_name("PORT")
        ->check(within({1, 65535}))
        ->group(linkGroup);
}

void addPatienceOptions(CLI::App& app, CommonOptions& common)
{
    app.add_option("-o,--timeout", common.timeoutMs,
                   "Reply time-out in ms, or with a unit: 0.5s (default: adapts to the line)")
        ->type_name("MS")
        ->transform(timeWithin(timeoutLimitsMs))
        ->group(linkGroup);
    app.add_option("--retries", common.retries,
                   "Retries of a frame after a bad or missing reply (default: 2)")
        ->type_name("N")
        ->check(within(retryLimits))
        ->group(linkGroup);
    app.add_option("--reconnect-s", common.reconnectS,
                   "Keep trying for SECONDS to open a lost or missing link; 0 = never (default: "
                   "see man fxhost)")
        ->type_name("SECONDS")
        ->check(within(reconnectLimitsS))
        ->group(linkGroup);
    app.add_option("--words", common.wordsPerFrame,
                   "Maximum words in one frame: 2 to 253 (default: 32, or words= of the link)")
        ->type_name("N")
        ->check(within({leastWordsPerFrame, mostWordsPerFrame}))
        ->group(linkGroup);
    app.add_flag("--tolerant", common.tolerant,
                 "Accept a right reply among extra characters; only its checksum then guards it")
        ->group(linkGroup);
}

// The settings of the kind that an option is for.
template <typename Settings>
Settings& settingsFor(LinkSettings& link, const char* option)
{
    if (auto* const settings = std::get_if<Settings>(&link))
        return *settings;
    throw Failure(ExitCode::Usage,
                  QStringLiteral("link '%1': no setting '%2' for this kind of link; it has: %3")
                      .arg(linkText(link), QLatin1String(option),
                           settingNames(link).join(QStringLiteral(", "))));
}

LineSettings& lineFor(LinkSettings& link, const char* option)
{
    std::optional<LineSettings>& line = settingsFor<SerialSettings>(link, option).line;
    return line ? *line : line.emplace();
}

void applyBaud(LinkSettings& link, int baud)
{
    if (auto* const simulated = std::get_if<SimulatedSettings>(&link))
        simulated->baud = checkedBaud(baud);
    else
        lineFor(link, "baud").baud = checkedBaud(baud);
}

// What the command line gives goes before.
void takeConfigured(const ConfiguredPlc& plc, CommonOptions& common)
{
    common.link.named = plc.link;
    common.link.configured = plc.name;
    if (common.tags.empty())
        common.tags = plc.tags.toStdString();
    if (common.timeoutMs == 0)
        common.timeoutMs = plc.timeoutMs.value_or(0);
    if (common.retries < 0)
        common.retries = plc.retries.value_or(-1);
    if (common.reconnectS < 0)
        common.reconnectS = plc.reconnectS.value_or(-1);
}

QSerialPort::Parity parityNamed(const QString& name)
{
    if (const std::optional<QSerialPort::Parity> parity = parseParity(name))
        return *parity;
    throw Failure(ExitCode::Usage, "invalid --parity " + quoted(name) + ": use even, odd or none");
}

}  // namespace

void addLinkOptions(CLI::App& app, CommonOptions& common)
{
    addNamingOptions(app, common.link);
    addTagsOption(app, common);
    addLineOptions(app, common.link);
    addPatienceOptions(app, common);
}

void addOutputOptions(CLI::App& app, CommonOptions& common)
{
    OutputOptions& output = common.output;
    CLI::Option* const json =
        app.add_flag_callback(
               "--json", [&output] { output.mode = OutputMode::Json; }, "Print JSON, for programs")
            ->group(outputGroup);
    app.add_flag_callback(
           "--csv", [&output] { output.mode = OutputMode::Csv; }, "Print CSV, for spreadsheets")
        ->excludes(json)
        ->group(outputGroup);
    app.add_flag("--timestamps", output.timestamps, "Print the time before each line or record")
        ->group(outputGroup);
    app.add_flag("-q,--quiet", output.quiet, "No headings, progress, remarks or summary")
        ->group(outputGroup);
}

void addExamples(CLI::App& command, const std::vector<std::string>& examples)
{
    std::string text = "Examples:\n";
    for (const std::string& example : examples)
        text += "  " + example + '\n';
    command.footer(text + "\nFor the link and output options see fxhost --help.");
}

void addFileOptions(CLI::App& command, FileOptions& options)
{
    command.add_option("file", options.file, "File to write; - is standard output")->required();
    command.add_flag("--force", options.force, "Replace an existing file");
}

OutputOptions besides(const FileOptions& options, const OutputOptions& output)
{
    OutputOptions without = output;
    if (options.file == "-") {
        without.mode = OutputMode::People;
        without.quiet = true;
    }
    return without;
}

void chooseLink(CommonOptions& common)
{
    const LinkOptions& options = common.link;
    if (const auto plc =
            meantPlc({QString::fromStdString(options.link), QString::fromStdString(options.plc),
                      QString::fromStdString(options.config)}))
        takeConfigured(*plc, common);
    if (common.retries < 0)
        common.retries = usualRetries;
}

void demandNamedLink(const CommonOptions& common)
{
    if (!common.link.named)
        throw Failure(ExitCode::Usage,
                      QStringLiteral("no PLC named: use --link, --plc or FX_LINK; --link sim: is a "
                                     "simulated PLC"));
}

LinkSettings LinkOptions::settings(const LinkSettings& unlessSaid) const
{
    LinkSettings settings = named.value_or(unlessSaid);
    if (baud > 0)
        applyBaud(settings, baud);
    const QString character = QString::fromStdString(line);
    if (!line.empty() && !parseCharacter(character, lineFor(settings, "line")))
        throw Failure(ExitCode::Usage, "invalid --line " + quoted(character) +
                                           ": use data bits, parity and stop bits: 7E1 or 8N1");
    if (!parity.empty())
        lineFor(settings, "parity").parity = parityNamed(QString::fromStdString(parity));
    if (port > 0)
        settingsFor<TcpSettings>(settings, "port").port = static_cast<quint16>(port);
    return settings;
}

}  // namespace fxtools
