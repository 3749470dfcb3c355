// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The settings of the link, from --link or FX_LINK and the options that override it.

#include "tools/fxhost/commands/command.h"

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

}  // namespace

void chooseLink(CommonOptions& common)
{
    if (!common.link.isNamed())
        common.link.link = qgetenv("FX_LINK").toStdString();
}

void demandNamedLink(const CommonOptions& common)
{
    if (!common.link.isNamed())
        throw Failure(ExitCode::Usage,
                      QStringLiteral("no PLC named: give --link or set FX_LINK; --link sim: is a "
                                     "simulated PLC"));
}

LinkSettings LinkOptions::settings(const LinkSettings& unlessSaid) const
{
    LinkSettings settings = link.empty() ? unlessSaid : parseLink(QString::fromStdString(link));
    if (baud > 0)
        applyBaud(settings, baud);
    if (!line.empty() && !parseCharacter(QString::fromStdString(line), lineFor(settings, "line")))
        throw Failure(ExitCode::Usage,
                      "invalid --line '" + QString::fromStdString(line) +
                          "': expected data bits, parity and stop bits such as 7E1 or 8N1");
    if (!parity.empty())
        lineFor(settings, "parity").parity = *parseParity(QString::fromStdString(parity));
    if (port > 0)
        settingsFor<TcpSettings>(settings, "port").port = static_cast<quint16>(port);
    return settings;
}

}  // namespace fxtools
