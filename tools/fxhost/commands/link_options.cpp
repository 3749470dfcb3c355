// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which PLC is meant, and the settings of its link with the options that override them.

#include "tools/fxhost/commands/command.h"
#include "tools/fxhost/configuration.h"
#include "tools/fxhost/suggestion.h"
#include "tools/quoted.h"

#include <QFile>

namespace fxtools {

namespace {

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

LinkSettings linkOfEnvironment(const QString& text)
{
    try {
        return parseLink(text);
    } catch (const Failure& failure) {
        throw Failure(failure.code(), "FX_LINK: " + failure.text());
    }
}

// The PLC that --plc names, or the default of the configuration file if there is one.
std::optional<ConfiguredPlc> configuredPlc(const LinkOptions& options)
{
    const bool isGiven = !options.config.empty();
    const QString file =
        isGiven ? QString::fromStdString(options.config) : usualConfigurationFile();
    if (options.plc.empty() && !isGiven && !QFile::exists(file))
        return std::nullopt;
    const Configuration configuration = readConfiguration(file);
    const QString name =
        options.plc.empty() ? configuration.defaultPlc : QString::fromStdString(options.plc);
    if (name.isEmpty())
        return std::nullopt;
    if (const ConfiguredPlc* const plc = configuration.find(name))
        return *plc;
    throw Failure(ExitCode::Usage, file + ": " + unknownName("PLC", name, configuration.names()));
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

void chooseLink(CommonOptions& common)
{
    LinkOptions& options = common.link;
    const QString environment = qEnvironmentVariable("FX_LINK");
    if (!options.link.empty())
        options.named = parseLink(QString::fromStdString(options.link));
    else if (options.plc.empty() && !environment.isEmpty())
        options.named = linkOfEnvironment(environment);
    else if (const std::optional<ConfiguredPlc> plc = configuredPlc(options))
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
