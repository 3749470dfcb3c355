// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The settings of a link to a PLC, as typed records and as people write them:
//
//   sim:                            a simulated PLC inside; sim:?baud=9600 with the speed of a
//                                   line, &faults=silence=0.05 with faults
//   serial:/dev/ttyUSB0?baud=9600   a serial port, 7E1 without &line=8N1 or &parity=odd
//   pty:/dev/pts/4                  a pseudo-terminal, with the settings of a serial port
//   /dev/ttyUSB0                    the same port: what starts with a slash is serial
//   tcp:HOST:PORT, tcp:HOST?port=N  a serial server (default port: 8888)
//   HOST:PORT                       the same; HOST is an address, localhost or a name with a dot
//
// Every link may say station=2, the station of its PLC, and words=16, the most words that this PLC
// takes in one frame.

#pragma once

#include "tools/failure.h"

#include <QSerialPort>
#include <QStringList>

#include <optional>
#include <variant>

namespace fxtools {

// The settings of a serial line. The defaults are those of an FX port.
struct LineSettings
{
    int baud = 9600;
    QSerialPort::DataBits dataBits = QSerialPort::Data7;
    QSerialPort::Parity parity = QSerialPort::EvenParity;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;
};

constexpr int leastWordsPerFrame = 2;  // a counter has two
constexpr int mostWordsPerFrame = 253;

// What every link may say of its PLC.
struct PlcSettings
{
    int station = 1;
    std::optional<int> words;  // in one frame; nothing: not given
};

struct SerialSettings : PlcSettings
{
    QString path;
    bool isPseudoTerminal = false;
    std::optional<LineSettings> line;  // nothing: not given
};

struct TcpSettings : PlcSettings
{
    QString host;
    quint16 port = 8888;
};

struct SimulatedSettings : PlcSettings
{
    std::optional<int> baud;  // nothing: characters take no time
    QString faults;           // a plan in the simulator's own language
};

using LinkSettings = std::variant<SimulatedSettings, SerialSettings, TcpSettings>;

LinkSettings parseLink(const QString& text);  // throws Failure
QString linkText(const LinkSettings& link);
PlcSettings& plcSettings(LinkSettings& link);

// Throws Failure unless a serial port may have this speed.
int checkedBaud(int baud);

// The names of the settings that this kind of link has.
QStringList settingNames(const LinkSettings& link);

// Parses "7E1", data bits, parity and stop bits, into `line`. False if `text` is not of this form.
bool parseCharacter(const QString& text, LineSettings& line);
QString characterText(const LineSettings& line);

// "even", "odd" or "none".
std::optional<QSerialPort::Parity> parseParity(const QString& text);

}  // namespace fxtools
