// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Links as people write them, and the records that they mean.

#include "tools/link/link_settings.h"

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

std::string reasonFor(const char* link)
{
    try {
        parseLink(link);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::Usage) << link;
        return failure.what();
    }
    return "accepted";
}

}  // namespace

TEST(LinkSettings, OfASerialPortAreLeftOpenUnlessSaid)
{
    const auto open = std::get<SerialSettings>(parseLink("serial:/dev/ttyS1"));
    EXPECT_EQ(open.path, "/dev/ttyS1");
    EXPECT_FALSE(open.isPseudoTerminal);
    EXPECT_FALSE(open.line.has_value());
    const auto said = std::get<SerialSettings>(parseLink("PTY:/dev/pts/4?baud=19200&line=8n2"));
    EXPECT_TRUE(said.isPseudoTerminal);
    EXPECT_EQ(said.line->baud, 19200);
    EXPECT_EQ(said.line->dataBits, QSerialPort::Data8);
    EXPECT_EQ(said.line->parity, QSerialPort::NoParity);
    EXPECT_EQ(said.line->stopBits, QSerialPort::TwoStop);
}

TEST(LinkSettings, HaveATextThatMeansTheSameLink)
{
    const std::pair<const char*, const char*> rows[] = {
        {"sim:", "sim:"},
        {"sim:?baud=9600&faults=nak=1", "sim:?baud=9600&faults=nak=1"},
        {"serial:/dev/ttyS1", "serial:/dev/ttyS1"},
        {"serial:/dev/ttyS1?baud=38400&line=8E1", "serial:/dev/ttyS1?baud=38400&line=8E1"},
        {"serial:x?baud=9600&station=255&words=16", "serial:x?baud=9600&station=255&words=16"},
        {"serial:x?parity=Odd", "serial:x?baud=9600&line=7O1"},
        {"serial:x?baud=9600&line=7e1", "serial:x?baud=9600"},
        {"pty:/dev/pts/4", "pty:/dev/pts/4"},
        {"/dev/ttyUSB0", "serial:/dev/ttyUSB0"},
        {"/dev/a:b?baud=19200", "serial:/dev/a:b?baud=19200"},
        {"tcp:plc", "tcp:plc:8888"},
        {"tcp:plc?port=1", "tcp:plc:1"},
        {"tcp:plc:1", "tcp:plc:1"},
        {"tcp:plc:65535", "tcp:plc:65535"},
        {"serial:x?baud=4000000", "serial:x?baud=4000000"},
        {"tcp:plc:502?station=2", "tcp:plc:502?station=2"},
        {"tcp:plc:502?port=503", "tcp:plc:503"},
        {"tcp:[::1]:502", "tcp:[::1]:502"},
        {"192.168.0.5:5551", "tcp:192.168.0.5:5551"},
        {"localhost:502?words=16", "tcp:localhost:502?words=16"},
        {"[::1]:5551", "tcp:[::1]:5551"},
        {"plc.example:502", "tcp:plc.example:502"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(linkText(parseLink(row.first)).toStdString(), row.second);
    EXPECT_EQ(std::get<TcpSettings>(parseLink("tcp:[::1]:502")).host, "::1");
}

TEST(LinkSettings, OfASimulatedPlcKeepItsFaultsAsWritten)
{
    EXPECT_FALSE(std::get<SimulatedSettings>(parseLink("sim:")).baud.has_value());
    const auto bad =
        std::get<SimulatedSettings>(parseLink("sim:?baud=9600&faults=silence=5%,nak@3"));
    EXPECT_EQ(bad.baud, 9600);
    EXPECT_EQ(bad.faults, "silence=5%,nak@3");
}

TEST(LinkSettings, MaySayTheStationAndTheWordsOfTheirPlc)
{
    for (const char* const way : {"sim:", "serial:/dev/ttyS1", "pty:/dev/pts/4", "tcp:plc:502"}) {
        LinkSettings link = parseLink(QString(way) + "?words=16&station=2");
        EXPECT_EQ(plcSettings(link).station, 2) << way;
        EXPECT_EQ(plcSettings(link).words, 16) << way;
        link = parseLink(way);
        EXPECT_EQ(plcSettings(link).station, 1) << way;
        EXPECT_FALSE(plcSettings(link).words) << way;
    }
    EXPECT_FALSE(std::get<SerialSettings>(parseLink("/dev/ttyS1?words=16")).line)
        << "doctor is to find them out";
}

TEST(LinkSettings, WrongOnesSayWhatWouldBeRight)
{
    const char* const forms =
        "expected sim:, serial:/dev/ttyUSB0?baud=9600, tcp:HOST:PORT or pty:PATH";
    const std::pair<const char*, const char*> rows[] = {
        {"com1", forms},
        {"usb:1", forms},
        {"::1:5551", forms},
        {"serial:", "the path of the port is missing"},
        {"serial:x?baud=fast", "baud must be a number from 1 to 4000000"},
        {"serial:x?baud=9600&baud=19200", "baud is given twice"},
        {"serial:x?line=9E1", "line must be data bits, parity and stop bits such as 7E1 or 8N1"},
        {"serial:x?parity=mark", "parity must be even, odd or none"},
        {"serial:x?baud=4000001", "baud must be a number from 1 to 4000000"},
        {"tcp:", "expected tcp:HOST or tcp:HOST:PORT"},
        {"tcp:plc:0", "port must be a number from 1 to 65535"},
        {"tcp:plc?port=0", "port must be a number from 1 to 65535"},
        {"tcp:plc:65536", "port must be a number from 1 to 65535"},
        {"tcp:plc?port=65536", "port must be a number from 1 to 65535"},
        {"tcp:plc?baud=9600", "unknown setting 'baud'; known: port, station, words"},
        {"sim:?words=1", "words must be a number from 2 to 253"},
        {"sim:?words=254", "words must be a number from 2 to 253"},
        {"sim:?station=0", "station must be a number from 1 to 255"},
        {"sim:?station=256", "station must be a number from 1 to 255"},
        {"sim:here", "expected sim: or sim:?baud=9600&faults=silence=0.05"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(reasonFor(row.first),
                  "invalid link '" + std::string(row.first) + "': " + row.second);
    EXPECT_EQ(reasonFor("sim:?baud=9601"), "no serial port runs at 9601 baud; did you mean 9600?");
}
