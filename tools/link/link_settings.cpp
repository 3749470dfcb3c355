// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/link/link_settings.h"

#include "tools/quoted.h"

#include <QRegularExpression>
#include <QSerialPortInfo>
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

constexpr int fastestBaud = 4000000;

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

std::optional<int> numberIn(const LinkParts& parts, const char* name, int least, int most)
{
    const std::optional<QString> text = parts.value(name);
    if (!text)
        return std::nullopt;
    bool isNumber = false;
    const int number = text->toInt(&isNumber);
    if (!isNumber || number < least || number > most) {
        reject(parts, QString("%1 must be a number from %2 to %3")
                          .arg(QLatin1String(name))
                          .arg(least)
                          .arg(most));
    }
    return number;
}

std::optional<int> baudIn(const LinkParts& parts)
{
    const std::optional<int> baud = numberIn(parts, "baud", 1, fastestBaud);
    return baud ? std::optional(checkedBaud(*baud)) : std::nullopt;
}

void applyParity(const LinkParts& parts, const QString& text, LineSettings& line)
{
    const std::optional<QSerialPort::Parity> parity = parseParity(text);
    if (!parity)
        reject(parts, "parity must be even, odd or none");
    line.parity = *parity;
}

std::optional<LineSettings> lineIn(const LinkParts& parts)
{
    const std::optional<int> baud = baudIn(parts);
    const std::optional<QString> character = parts.value("line");
    if (!baud && !character && !parts.value("parity"))
        return std::nullopt;
    LineSettings line;
    line.baud = baud.value_or(line.baud);
    if (character && !parseCharacter(*character, line))
        reject(parts, "line must be data bits, parity and stop bits such as 7E1 or 8N1");
    if (const std::optional<QString> parity = parts.value("parity"))
        applyParity(parts, *parity, line);
    return line;
}

PlcSettings plcIn(const LinkParts& parts)
{
    return {numberIn(parts, "station", 1, 255).value_or(1),
            numberIn(parts, "words", leastWordsPerFrame, mostWordsPerFrame)};
}

LinkSettings parseSerial(const LinkParts& parts, bool isPseudoTerminal)
{
    if (parts.target.isEmpty())
        reject(parts, "the path of the port is missing");
    return SerialSettings{plcIn(parts), parts.target, isPseudoTerminal, lineIn(parts)};
}

LinkSettings parseSimulated(const LinkParts& parts)
{
    if (!parts.target.isEmpty())
        reject(parts, "expected sim: or sim:?baud=9600&faults=silence=0.05");
    return SimulatedSettings{plcIn(parts), baudIn(parts),
                             parts.value("faults").value_or(QString())};
}

LinkSettings parseTcp(const LinkParts& parts)
{
    static const QRegularExpression pattern("^(\\[[^]]+\\]|[^:]+)(?::(\\d+))?$");
    const QRegularExpressionMatch match = pattern.match(parts.target);
    if (!match.hasMatch())
        reject(parts, "expected tcp:HOST or tcp:HOST:PORT");
    TcpSettings settings{plcIn(parts), match.captured(1).remove('[').remove(']')};
    const QString portText = match.captured(2);
    const int port = portText.isEmpty() ? settings.port : portText.toInt();
    settings.port = static_cast<quint16>(numberIn(parts, "port", 1, 65535).value_or(port));
    if (port < 1 || port > 65535)
        reject(parts, "port must be a number from 1 to 65535");
    return settings;
}

// What starts with a slash is a serial port, and what looks like an address is TCP; press:1 may be
// a mistyped kind as well.
QString withKind(const QString& text)
{
    static const QRegularExpression hostAndPort(
        "^(localhost|[^:/?]+\\.[^:/?]+|\\[[^]]+\\]):\\d+(\\?.*)?$");
    if (text.startsWith('/'))
        return "serial:" + text;
    return hostAndPort.match(text).hasMatch() ? "tcp:" + text : text;
}

LinkSettings parseKind(const QString& kind, const LinkParts& parts)
{
    if (kind == "sim")
        return parseSimulated(parts);
    if (kind == "serial" || kind == "pty")
        return parseSerial(parts, kind == "pty");
    if (kind == "tcp")
        return parseTcp(parts);
    reject(parts, "expected sim:, serial:/dev/ttyUSB0?baud=9600, tcp:HOST:PORT or pty:PATH");
}

// The settings that differ from their defaults, those of the PLC last.
QString queryText(QStringList settings, const PlcSettings& plc)
{
    if (plc.station != PlcSettings().station)
        settings += QString("station=%1").arg(plc.station);
    if (plc.words)
        settings += QString("words=%1").arg(*plc.words);
    return settings.isEmpty() ? QString() : '?' + settings.join('&');
}

QString textOf(const SimulatedSettings& settings)
{
    QStringList query;
    if (settings.baud)
        query += QString("baud=%1").arg(*settings.baud);
    if (!settings.faults.isEmpty())
        query += "faults=" + settings.faults;
    return "sim:" + queryText(query, settings);
}

QString textOf(const SerialSettings& settings)
{
    QStringList query;
    if (settings.line) {
        query += QString("baud=%1").arg(settings.line->baud);
        if (characterText(*settings.line) != characterText(LineSettings()))
            query += "line=" + characterText(*settings.line);
    }
    return (settings.isPseudoTerminal ? "pty:" : "serial:") + settings.path +
           queryText(query, settings);
}

QString textOf(const TcpSettings& settings)
{
    const bool isNumeric6 = settings.host.contains(':');
    return QString("tcp:%1:%2")
               .arg(isNumeric6 ? '[' + settings.host + ']' : settings.host)
               .arg(settings.port) +
           queryText({}, settings);
}

}  // namespace

LinkSettings parseLink(const QString& text)
{
    const QString named = withKind(text);
    const QString kind = named.section(':', 0, 0).toLower();
    const QString rest = named.section(':', 1);
    const LinkParts parts{text, rest.section('?', 0, 0), QUrlQuery(rest.section('?', 1))};
    LinkSettings link = parseKind(kind, parts);
    const QStringList known = settingNames(link);
    for (const auto& item : parts.query.queryItems()) {
        if (!known.contains(item.first))
            reject(
                parts,
                QString("unknown setting %1; known: %2").arg(quoted(item.first), known.join(", ")));
        if (parts.query.allQueryItemValues(item.first).size() > 1)
            reject(parts, item.first + " is given twice");
    }
    return link;
}

QString linkText(const LinkSettings& link)
{
    return std::visit([](const auto& settings) { return textOf(settings); }, link);
}

PlcSettings& plcSettings(LinkSettings& link)
{
    return std::visit([](auto& settings) -> PlcSettings& { return settings; }, link);
}

int checkedBaud(int baud)
{
    const QList<qint32> usual = QSerialPortInfo::standardBaudRates();
    if (usual.contains(baud))
        return baud;
    const auto nearest = std::min_element(usual.begin(), usual.end(), [baud](qint32 a, qint32 b) {
        return qAbs(a - baud) < qAbs(b - baud);
    });
    throw Failure(
        ExitCode::Usage,
        QString("no serial port runs at %1 baud; did you mean %2?").arg(baud).arg(*nearest));
}

QStringList settingNames(const LinkSettings& link)
{
    QStringList names;
    if (std::holds_alternative<SerialSettings>(link))
        names = QStringList{"baud", "line", "parity"};
    else if (std::holds_alternative<TcpSettings>(link))
        names = QStringList{"port"};
    else
        names = QStringList{"baud", "faults"};
    return names + QStringList{"station", "words"};
}

bool parseCharacter(const QString& text, LineSettings& line)
{
    static const QRegularExpression pattern("^([78])([ENO])([12])$");
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
