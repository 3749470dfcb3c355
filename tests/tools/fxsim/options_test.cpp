// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The command line: what each option sets, and what is said of a mistake.

#include "tools/fxsim/options.h"

#include "tests/tools/fxsim/support.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

using namespace fxsim;

namespace {

using Arguments = std::vector<const char*>;

std::optional<Options> parsed(Arguments arguments)
{
    arguments.insert(arguments.begin(), "fxsim");
    return parseOptions(static_cast<int>(arguments.size()), arguments.data());
}

Options options(const Arguments& arguments)
{
    return parsed(arguments).value();
}

}  // namespace

TEST(Options, HaveDefaults)
{
    const Options none = options({});
    EXPECT_TRUE(none.pty);
    EXPECT_FALSE(none.tcp);
    EXPECT_EQ(none.settings.timing.baud, 9600);
    EXPECT_EQ(none.settings.timing.scanMs, 0);
    EXPECT_EQ(none.settings.enquiry, EnquiryMode::Optional);
    EXPECT_EQ(none.settings.onError, OnError::Nak);
    EXPECT_EQ(none.settings.maxBytes, 64);
    EXPECT_EQ(none.settings.seed, 1U);
    EXPECT_TRUE(none.settings.faults.isEmpty());
    EXPECT_TRUE(none.present.isEmpty());
    EXPECT_STREQ(none.settings.model->name, "any");
    EXPECT_TRUE(none.missing.isEmpty());
    EXPECT_EQ(none.mirrors.at(0).to, 0x0E00);
    EXPECT_EQ(none.program, "sample");
    EXPECT_FALSE(none.trace || none.stats || none.noCommands);
}

TEST(Options, SetThePlc)
{
    const Options all =
        options({"--baud=300", "--baud=0", "--scan-ms=10000", "--enq=needed", "--on-error=silence",
                 "--max-bytes=255", "--memory=0x0-0x1FFF", "--holes=D5,0x2", "--mirror=none",
                 "--faults=nak@3,delay=1%", "--seed=18446744073709551615"});
    EXPECT_EQ(all.settings.timing.baud, 0);
    EXPECT_EQ(all.settings.timing.scanMs, 10000);
    EXPECT_EQ(all.settings.enquiry, EnquiryMode::Needed);
    EXPECT_EQ(all.settings.onError, OnError::Silence);
    EXPECT_EQ(all.settings.maxBytes, 255);
    EXPECT_EQ(all.present.at(0).last, 0x1FFF);
    EXPECT_EQ(all.missing.size(), 2);
    EXPECT_TRUE(all.mirrors.isEmpty());
    EXPECT_EQ(faultPlanText(all.settings.faults), "nak@3,delay=0.01");
    EXPECT_EQ(all.settings.seed, std::numeric_limits<quint64>::max());
    EXPECT_EQ(options({"--enq=ignored"}).settings.enquiry, EnquiryMode::Ignored);
}

TEST(Options, SetTheBench)
{
    const Options all = options({"--program", "a.json", "--load", "b", "--save", "c", "--trace",
                                 "--stats", "--control", "d", "--tell", "quit", "--no-commands"});
    EXPECT_EQ(all.program + all.loadPath + all.savePath + all.controlPath, "a.jsonbcd");
    EXPECT_EQ(all.tellCommand, "quit");
    EXPECT_TRUE(all.trace && all.stats && all.noCommands);
    EXPECT_EQ(all.tracePath, "");
    EXPECT_EQ(options({"--trace", "e"}).tracePath, "e");
}

TEST(Options, ChooseTheLinks)
{
    EXPECT_TRUE(options({"--link", "a", "--tcp"}).pty);
    EXPECT_EQ(options({"--link", "a"}).linkPath, "a");
    EXPECT_FALSE(options({"--tcp"}).pty);
    EXPECT_TRUE(options({"--tcp", "--pty"}).pty);
    EXPECT_FALSE(options({"--serial", "b"}).pty);
    EXPECT_EQ(options({"--serial", "b"}).serialDevice, "b");
}

TEST(Options, ReadTcpAddresses)
{
    const struct
    {
        const char* option;
        const char* address;
        int port;
    } rows[] = {
        {"--tcp", "127.0.0.1", 8888},
        {"--tcp=502", "127.0.0.1", 502},
        {"--tcp=:0", "127.0.0.1", 0},
        {"--tcp=localhost:8889", "127.0.0.1", 8889},
        {"--tcp=0.0.0.0:8888", "0.0.0.0", 8888},
        {"--tcp=[::1]:65535", "::1", 65535},
    };
    for (const auto& row : rows) {
        const Options read = options({row.option});
        ASSERT_TRUE(read.tcp);
        EXPECT_EQ(read.tcp->address, QHostAddress(row.address)) << row.option;
        EXPECT_EQ(read.tcp->port, row.port) << row.option;
    }
}

TEST(Options, MistakesAreExplained)
{
    const struct
    {
        Arguments arguments;
        const char* message;
    } rows[] = {
        {{"--tcp", "99999"}, "--tcp: invalid port '99999': expected 0 to 65535"},
        {{"--tcp", "plc.example:1"},
         "--tcp: invalid address 'plc.example': expected an IP address or localhost"},
        {{"--baud", "9601"},
         "--baud: invalid speed '9601': expected 0, or a usual speed such as 9600, 19200 or "
         "115200"},
        {{"--seed", "-1"}, "--seed: invalid seed '-1': expected 0 to 18446744073709551615"},
        {{"--seed", "18446744073709551616"},
         "--seed: invalid seed '18446744073709551616': expected 0 to 18446744073709551615"},
        {{"--scan-ms", "10001"}, "--scan-ms: invalid time in ms '10001': expected 0 to 10000"},
        {{"--on-error", "ack"}, "--on-error: invalid value 'ack': expected nak or silence"},
        {{"--enq", "never"}, "--enq: invalid value 'never': expected optional, needed or ignored"},
        {{"--model", "fx0"}, "--model: invalid model 'fx0': expected any, fx1s or fx1n"},
        {{"--max-bytes", "256"}, "--max-bytes: invalid number of bytes '256': expected 1 to 255"},
        {{"--max-bytes", "0"}, "--max-bytes: invalid number of bytes '0': expected 1 to 255"},
        {{"--holes", "5"},
         "--holes: invalid address '5': expected hex, as in 0x1000, or a device, as in D0"},
        {{"--memory", "0x10000"},
         "--memory: invalid address '0x10000': expected a device, as in D100, or 0x0000 to 0xFFFF"},
        {{"--mirror", "1:2"},
         "--mirror: invalid mirror '1:2': expected FROM:TO:BYTES, as in "
         "0x0F00:0x0E00:256, or none"},
        {{"--faults", "loud"},
         "--faults: fault 'loud': unknown fault; 'help' in place of the plan "
         "lists all faults"},
        {{"--serial", "/dev/null", "--baud", "0"}, "--serial needs a speed: --baud 0 has none"},
        {{"--tell", "quit"}, "--tell requires --control"},
        {{"--sirial"}, "unknown option '--sirial' (did you mean --serial?)"},
        {{"plc"}, "unexpected argument 'plc'"},
        {{"--baud"}, "--baud: SPEED missing"},
        {{"--pty=3"}, "--pty takes no value"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(errorText([&row] { parsed(row.arguments); }),
                  QString(row.message) + " (see fxsim --help)");
    const QByteArray loud = "\x1b[2J\a" + QByteArray(300, 'x');
    EXPECT_EQ(errorText([&loud] {
                  parsed({"--model", loud.constData()});
              }),
              "--model: invalid model '?[2J?" + QString(52, 'x') +
                  "...': expected any, fx1s or fx1n (see fxsim --help)");
    EXPECT_FALSE(errorText([&loud] { parsed({loud.constData()}); }).contains(QChar(0x1B)));
    for (const char* option : {"--link", "--serial", "--load", "--save", "--program", "--control"})
        EXPECT_EQ(errorText([option] {
                      parsed({option, ""});
                  }),
                  QString("%1: the name must not be empty (see fxsim --help)").arg(option));
}
