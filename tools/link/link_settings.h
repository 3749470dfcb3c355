// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which link leads to a PLC, as one typed record, and as people write it:
//
//   sim:                            a simulated PLC inside; sim:?baud=9600 at the speed of a line,
//                                   &faults=silence=0.05 as a bad one
//   serial:/dev/ttyUSB0?baud=9600   a serial port, 7E1 unless &line=8N1 or &parity=odd says else
//   pty:/dev/pts/4                  a pseudo-terminal, with the settings of a serial port
//   tcp:HOST:PORT, tcp:HOST?port=N  a serial server; port 8888 unless said

#pragma once

#include "tools/failure.h"

#include <QSerialPort>
#include <QStringList>

#include <optional>
#include <variant>

namespace fxtools {

// How characters travel on a serial line; as it stands, what an FX port speaks.
struct LineSettings
{
    int baud = 9600;
    QSerialPort::DataBits dataBits = QSerialPort::Data7;
    QSerialPort::Parity parity = QSerialPort::EvenParity;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;
};

struct SerialSettings
{
    QString path;
    bool isPseudoTerminal = false;
    std::optional<LineSettings> line;  // nothing: the user left it open
};

struct TcpSettings
{
    QString host;
    quint16 port = 8888;
};

struct SimulatedSettings
{
    std::optional<int> baud;  // nothing: characters take no time
    QString faults;           // a plan in the simulator's own language
};

using LinkSettings = std::variant<SimulatedSettings, SerialSettings, TcpSettings>;

LinkSettings parseLink(const QString& text);  // throws Failure
QString linkText(const LinkSettings& link);

// The names of what can be set behind the "?" of such a link.
QStringList settingNames(const LinkSettings& link);

// "7E1": data bits, parity and stop bits into `line`; false when it is nothing like it.
bool parseCharacter(const QString& text, LineSettings& line);
QString characterText(const LineSettings& line);

// "even", "odd" or "none".
std::optional<QSerialPort::Parity> parseParity(const QString& text);

}  // namespace fxtools
