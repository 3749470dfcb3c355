// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/link/link_settings.h"

#include "tools/quoted.h"

#include <QRegularExpression>
#include <QUrlQuery>

#include <algorithm>

namespace fxtools {

namespace {

struct ParityRow
{
    QSerialPort::Parity parity;
    const char* letter;
    const char* name;
};

constexpr ParityRow parityRows[] = {{QSerialPort::EvenParity, "E", "even"},
                                    {QSerialPort::OddParity, "O", "odd"},
                                    {QSerialPort::NoParity, "N", "none"}};

// A link text in its parts: "KIND:TARGET?QUERY".
struct LinkParts
{
    QString whole;
    QString target;
    QUrlQuery query;

    std::optional<QString> value(const char* name) const
    {
        const QString key = QString::fromLatin1(name);
        return query.hasQueryItem(key)
                   ? std::optional(query.queryItemValue(key, QUrl::FullyDecoded))
                   : std::nullopt;
    }
};

[[noreturn]] void reject(const LinkParts& parts, const QString& reason)
{
    throw Failure(ExitCode::Usage, "invalid link " + quoted(parts.whole) + ": " + reason);
}

std::optional<int> baudIn(const LinkParts& parts)
{
    const std::optional<QString> text = parts.value("baud");
    if (!text)
        return std::nullopt;
    bool isNumber = false;
    const int baud = text->toInt(&isNumber);
    if (!isNumber || baud < 1)
        reject(parts, QStringLiteral("baud must be a positive number such as 9600"));
    return baud;
}

void applyParity(const LinkParts& parts, const QString& text, LineSettings& line)
{
    const std::optional<QSerialPort::Parity> parity = parseParity(text);
    if (!parity)
        reject(parts, QStringLiteral("parity must be even, odd or none"));
    line.parity = *parity;
}

std::optional<LineSettings> lineIn(const LinkParts& parts)
{
    if (parts.query.isEmpty())
        return std::nullopt;
    LineSettings line;
    line.baud = baudIn(parts).value_or(line.baud);
    const std::optional<QString> character = parts.value("line");
    if (character && !parseCharacter(*character, line))
        reject(parts,
               QStringLiteral("line must be data bits, parity and stop bits such as 7E1 or 8N1"));
    if (const std::optional<QString> parity = parts.value("parity"))
        applyParity(parts, *parity, line);
    return line;
}

LinkSettings parseSerial(const LinkParts& parts, bool isPseudoTerminal)
{
    if (parts.target.isEmpty())
        reject(parts, QStringLiteral("the path of the port is missing"));
    return SerialSettings{parts.target, isPseudoTerminal, lineIn(parts)};
}

LinkSettings parseSimulated(const LinkParts& parts)
{
    if (!parts.target.isEmpty())
        reject(parts, QStringLiteral("expected sim: or sim:?baud=9600&faults=silence=0.05"));
    return SimulatedSettings{baudIn(parts), parts.value("faults").value_or(QString())};
}

LinkSettings parseTcp(const LinkParts& parts)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\[[^]]+\\]|[^:]+)(?::(\\d+))?$"));
    const QRegularExpressionMatch match = pattern.match(parts.target);
    if (!match.hasMatch())
        reject(parts, QStringLiteral("expected tcp:HOST or tcp:HOST:PORT"));
    TcpSettings settings;
    settings.host = match.captured(1).remove('[').remove(']');
    const QString asked = parts.value("port").value_or(QString());
    const QString portText = asked.isEmpty() ? match.captured(2) : asked;
    const int port = portText.isEmpty() ? settings.port : portText.toInt();
    if (port < 1 || port > 65535)
        reject(parts, QStringLiteral("port must be a number from 1 to 65535"));
    settings.port = static_cast<quint16>(port);
    return settings;
}

LinkSettings parseKind(const QString& kind, const LinkParts& parts)
{
    if (kind == QLatin1String("sim"))
        return parseSimulated(parts);
    if (kind == QLatin1String("serial") || kind == QLatin1String("pty"))
        return parseSerial(parts, kind == QLatin1String("pty"));
    if (kind == QLatin1String("tcp"))
        return parseTcp(parts);
    reject(parts, QStringLiteral(
                      "expected sim:, serial:/dev/ttyUSB0?baud=9600, tcp:HOST:PORT or pty:PATH"));
}

QString queryText(const QStringList& settings)
{
    return settings.isEmpty() ? QString() : '?' + settings.join('&');
}

QString textOf(const SimulatedSettings& settings)
{
    QStringList query;
    if (settings.baud)
        query += QStringLiteral("baud=%1").arg(*settings.baud);
    if (!settings.faults.isEmpty())
        query += "faults=" + settings.faults;
    return "sim:" + queryText(query);
}

QString textOf(const SerialSettings& settings)
{
    QStringList query;
    if (settings.line) {
        query += QStringLiteral("baud=%1").arg(settings.line->baud);
        query += "line=" + characterText(*settings.line);
    }
    return (settings.isPseudoTerminal ? "pty:" : "serial:") + settings.path + queryText(query);
}

QString textOf(const TcpSettings& settings)
{
    const bool isNumeric6 = settings.host.contains(':');
    return QStringLiteral("tcp:%1:%2")
        .arg(isNumeric6 ? '[' + settings.host + ']' : settings.host)
        .arg(settings.port);
}

}  // namespace

LinkSettings parseLink(const QString& text)
{
    const QString rest = text.section(':', 1);
    const LinkParts parts{text, rest.section('?', 0, 0), QUrlQuery(rest.section('?', 1))};
    LinkSettings link = parseKind(text.section(':', 0, 0).toLower(), parts);
    const QStringList known = settingNames(link);
    for (const auto& item : parts.query.queryItems()) {
        if (!known.contains(item.first))
            reject(parts, QStringLiteral("unknown setting %1; known: %2")
                              .arg(quoted(item.first), known.join(QStringLiteral(", "))));
    }
    return link;
}

QString linkText(const LinkSettings& link)
{
    return std::visit([](const auto& settings) { return textOf(settings); }, link);
}

QStringList settingNames(const LinkSettings& link)
{
    if (std::holds_alternative<SerialSettings>(link))
        return {QStringLiteral("baud"), QStringLiteral("line"), QStringLiteral("parity")};
    if (std::holds_alternative<TcpSettings>(link))
        return {QStringLiteral("port")};
    return {QStringLiteral("baud"), QStringLiteral("faults")};
}

bool parseCharacter(const QString& text, LineSettings& line)
{
    static const QRegularExpression pattern(QStringLiteral("^([78])([ENO])([12])$"));
    const QRegularExpressionMatch match = pattern.match(text.toUpper());
    if (!match.hasMatch())
        return false;
    line.dataBits = static_cast<QSerialPort::DataBits>(match.captured(1).toInt());
    line.stopBits = static_cast<QSerialPort::StopBits>(match.captured(3).toInt());
    for (const ParityRow& row : parityRows) {
        if (match.captured(2) == QLatin1String(row.letter))
            line.parity = row.parity;
    }
    return true;
}

QString characterText(const LineSettings& line)
{
    const auto* const row = std::find_if(
        std::begin(parityRows), std::end(parityRows),
        [&line](const ParityRow& candidate) { return candidate.parity == line.parity; });
    return QString::number(line.dataBits) + QLatin1String(row->letter) +
           QString::number(line.stopBits);
}

std::optional<QSerialPort::Parity> parseParity(const QString& text)
{
    for (const ParityRow& row : parityRows) {
        if (text.toLower() == QLatin1String(row.name))
            return row.parity;
    }
    return std::nullopt;
}

}  // namespace fxtools
