// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See link_address.h.

#include "tools/fxhost/link_address.h"

#include "tools/link/serial_link.h"
#include "tools/link/tcp_link.h"
#include "tools/simulated/sim_link.h"

#include <QRegularExpression>
#include <QUrlQuery>

namespace fxtools {

namespace {

constexpr quint16 defaultPort = 8888;

[[noreturn]] void reject(const QString& text, const QString& reason)
{
    throw Failure(ExitCode::Usage, "link '" + text + "': " + reason);
}

int baudOf(const QString& text, const QUrlQuery& query, int unlessSaid)
{
    if (!query.hasQueryItem(QStringLiteral("baud")))
        return unlessSaid;
    bool isNumber = false;
    const int baud = query.queryItemValue(QStringLiteral("baud")).toInt(&isNumber);
    if (!isNumber || baud < 1)
        reject(text, QStringLiteral("the baud rate is a number, such as 9600"));
    return baud;
}

void allowSettings(const QString& text, const QUrlQuery& query, const QStringList& known)
{
    for (const auto& item : query.queryItems()) {
        if (!known.contains(item.first))
            reject(text, QStringLiteral("'%1' is no setting here; there is %2")
                             .arg(item.first, known.join(QStringLiteral(", "))));
    }
}

// "7E1": data bits, parity, stop bits.
void applyLine(const QString& text, const QString& line, LineSettings& settings)
{
    static const QRegularExpression pattern(QStringLiteral("^([78])([ENO])([12])$"));
    const QRegularExpressionMatch match = pattern.match(line.toUpper());
    if (!match.hasMatch())
        reject(text, QStringLiteral("line is data bits, parity and stop bits, such as 7E1 or 8N1"));
    settings.dataBits = static_cast<QSerialPort::DataBits>(match.captured(1).toInt());
    settings.stopBits = static_cast<QSerialPort::StopBits>(match.captured(3).toInt());
    const QString parity = match.captured(2);
    settings.parity = parity == QLatin1String("E")   ? QSerialPort::EvenParity
                      : parity == QLatin1String("O") ? QSerialPort::OddParity
                                                     : QSerialPort::NoParity;
}

void applyParity(const QString& text, const QString& parity, LineSettings& settings)
{
    struct Row
    {
        const char* name;
        QSerialPort::Parity parity;
    };
    static constexpr Row rows[] = {{"even", QSerialPort::EvenParity},
                                   {"odd", QSerialPort::OddParity},
                                   {"none", QSerialPort::NoParity}};
    for (const Row& row : rows) {
        if (parity.toLower() == QLatin1String(row.name)) {
            settings.parity = row.parity;
            return;
        }
    }
    reject(text, QStringLiteral("the parity is even, odd or none"));
}

std::unique_ptr<Link> makeSerial(const QString& text, const QString& kind, const QString& rest)
{
    const QString path = rest.section('?', 0, 0);
    const QUrlQuery query(rest.section('?', 1));
    if (path.isEmpty())
        reject(text, QStringLiteral("the path of the port is missing"));
    LineSettings settings;
    settings.baud = baudOf(text, query, settings.baud);
    if (query.hasQueryItem(QStringLiteral("line")))
        applyLine(text, query.queryItemValue(QStringLiteral("line")), settings);
    if (query.hasQueryItem(QStringLiteral("parity")))
        applyParity(text, query.queryItemValue(QStringLiteral("parity")), settings);
    allowSettings(text, query, {"baud", "line", "parity"});
    return std::make_unique<SerialLink>(kind, path, settings);
}

std::unique_ptr<Link> makeSim(const QString& text, const QString& rest)
{
    const QUrlQuery query(rest.section('?', 1));
    if (!rest.section('?', 0, 0).isEmpty())
        reject(text, QStringLiteral("write sim: or sim:?baud=9600&faults=silence=0.05"));
    allowSettings(text, query, {"baud", "faults"});
    fxsim::Settings settings;
    settings.timing.baud = baudOf(text, query, settings.timing.baud);
    try {
        settings.faults = fxsim::parseFaults(query.queryItemValue("faults"));
    } catch (const fxsim::Error& error) {
        reject(text, error.text());
    }
    return std::make_unique<SimLink>(settings);
}

std::unique_ptr<Link> makeTcp(const QString& text, const QString& rest)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\[[^]]+\\]|[^:]+)(?::(\\d+))?$"));
    const QRegularExpressionMatch match = pattern.match(rest.section('?', 0, 0));
    if (!match.hasMatch())
        reject(text, QStringLiteral("write tcp:HOST or tcp:HOST:PORT"));
    const QUrlQuery query(rest.section('?', 1));
    allowSettings(text, query, {"port"});
    const QString asked = query.queryItemValue(QStringLiteral("port"));
    const QString portText = asked.isEmpty() ? match.captured(2) : asked;
    const int port = portText.isEmpty() ? defaultPort : portText.toInt();
    if (port < 1 || port > 65535)
        reject(text, QStringLiteral("the port is a number from 1 to 65535"));
    return std::make_unique<TcpLink>(match.captured(1).remove('[').remove(']'),
                                     static_cast<quint16>(port));
}

}  // namespace

std::unique_ptr<Link> makeLink(const QString& text)
{
    const QString kind = text.section(':', 0, 0).toLower();
    const QString rest = text.section(':', 1);
    if (kind == QLatin1String("sim"))
        return makeSim(text, rest);
    if (kind == QLatin1String("serial") || kind == QLatin1String("pty"))
        return makeSerial(text, kind, rest);
    if (kind == QLatin1String("tcp"))
        return makeTcp(text, rest);
    reject(text,
           QStringLiteral("write sim:, serial:/dev/ttyUSB0?baud=9600, tcp:HOST:PORT or pty:PATH"));
}

}  // namespace fxtools
