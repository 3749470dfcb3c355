// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost doctor on lines of every kind: which settings it tries, and how it ends.

#include "tests/tools/fxhost/host_terminal.h"
#include "tests/tools/support/programs.h"

#include <gtest/gtest.h>

#include <deque>

using namespace tool_tests;

namespace {

// A scale behind a serial server: it sends its weight for ever, and hears nothing.
const char* const scaleServer = R"(
import socket, time
server = socket.create_server(("127.0.0.1", 0))
print(server.getsockname()[1], flush=True)
line = server.accept()[0]
while True:
    line.send(b"12.5 kg\r\n")
    time.sleep(0.1)
)";

struct SilentPort : RunningSimulator
{
    SilentPort()
        : RunningSimulator(Road::PseudoTerminal, {"--faults", "silence=1", "--enq", "ignored"})
    {}
    QString serialLink() const { return "serial:" + link().section(':', 1); }
};

}  // namespace

TEST(Doctor, SaysWhatIsTheMatter)
{
    struct Case
    {
        const char* fault;
        int code;
        const char* words;
    };
    const Case cases[] = {
        {"nak=1", 5, "refuses the request (NAK). Line settings and wiring are correct"},
        {"echo=1", 6, "The request comes back"},
        {"wrong-sum=0.1", 1, " of 100 exchanges good"},
        {"power-cycle:60000@4", 4, "then no more"},
        {"junk-before:3=1", 6, " --tolerant read D0:8\n"},
    };
    std::deque<RunningSimulator> plcs;
    std::deque<RunningHost> doctors;  // side by side
    for (const Case& one : cases) {
        plcs.emplace_back(Road::Tcp, QStringList{"--baud", "0", "--faults", one.fault});
        doctors.emplace_back(QStringList{"--link", plcs.back().link(), "-o", "100", "doctor"});
    }
    for (const Case& one : cases) {
        const Ended ended = doctors.front().end();
        doctors.pop_front();
        EXPECT_EQ(ended.code, one.code) << one.fault;
        EXPECT_TRUE(holds(ended.out, one.words)) << one.fault << "\n" << ended.out;
        EXPECT_FALSE(holds(ended.out, "All is well")) << one.fault << "\n" << ended.out;
    }
}

TEST(Doctor, NamesWhatTalksByItself)
{
    ChildProcess scale;
    scale.start("python3", {"-c", scaleServer});
    ASSERT_TRUE(scale.waitForReadyRead());
    const QString port = scale.readAll().trimmed();
    const Ended ended = fxhost({"--link", "tcp:127.0.0.1:" + port, "doctor"});
    scale.kill();
    scale.waitForFinished();
    EXPECT_EQ(ended.code, 6) << ended.err;
    EXPECT_TRUE(holds(ended.out, "Something on this line sends by itself: '12.5 kg")) << ended.out;
}

TEST(Doctor, AsksASilentPortOnceWithEachSettingAndOnceWithPatience)
{
    const SilentPort silent;
    HostTerminal terminal({"--link", silent.serialLink(), "-o", "20", "doctor"}, 60, 40);
    EXPECT_EQ(terminal.waitForEnd(), 4);
    const QStringList lines = terminal.screen().lines();
    EXPECT_EQ(lines.filter("no answer  not sent").size(), 11);
    const int last = lines.indexOf("  9600 baud 7E1, patiently  no answer  no reply");
    EXPECT_EQ(lines.mid(last + 1, 4),
              QStringList({"", "No reply at all. Is the PLC on? Is the cable in the",
                           "programming port? Are the send and receive lines swapped?",
                           "With --thorough, doctor also sends a request with each"}))
        << terminal.screen().text().toStdString();
}

TEST(Doctor, SendsARequestWithEachSettingIfItIsToBeThorough)
{
    const SilentPort silent;
    HostTerminal terminal({"--link", silent.serialLink(), "-o", "20", "doctor", "--thorough"});
    EXPECT_TRUE(terminal.waitForText("  19200 baud 7E1  no answer  no reply"));
    terminal.press(3);  // Ctrl-C
    EXPECT_EQ(terminal.waitForEnd(), 130);
}

TEST(Doctor, ListsThePortsWhereNoneIsNamedOrItCannotBeOpened)
{
    QProcessEnvironment nothingNamed = hostEnvironment();
    nothingNamed.remove("FX_LINK");
    const Ended unnamed = fxhost({"doctor"}, nothingNamed);
    EXPECT_EQ(unnamed.code, 2);
    EXPECT_EQ(unnamed.out, fxhost({"ports"}).out);
    const Ended missing = fxhost({"--link", "serial:/dev/none", "-q", "doctor"}, nothingNamed);
    EXPECT_EQ(missing.code, 3);
    EXPECT_EQ(missing.out, fxhost({"ports", "-q"}).out);
    EXPECT_EQ(fxhost({"--link", "tcp:127.0.0.1:1", "doctor"}, nothingNamed).out, "");
}

TEST(Doctor, ShowsEachSettingAsItTriesIt)
{
    const RunningSimulator wrong(Road::PseudoTerminal, {"--baud", "0", "--faults", "bit7@1-6"});
    const QString port = wrong.link().section(':', 1);
    HostTerminal terminal({"--link", "serial:" + port, "-o", "2000", "doctor"}, 70, 24);
    EXPECT_EQ(terminal.waitForEnd(), 0);
    const QStringList lines = terminal.screen().lines();
    EXPECT_EQ(lines.mid(1, 4),
              QStringList({"  setting         ENQ       request",
                           "  9600 baud 7E1   answered  bit 7 set: check data bits and parity",
                           "  19200 baud 7E1  answered  bit 7 set: check data bits and parity",
                           "  38400 baud 7E1  answered  good"}));
    EXPECT_TRUE(lines.contains("The PLC answers (38400 baud 7E1). All is well."));
    EXPECT_EQ(lines.last(), "  fxhost --link 'serial:" + port + "?baud=38400' read D0:8");
    EXPECT_GT(terminal.written().count("\x1b[2A"), 0) << "it was drawn as it grew";
}
