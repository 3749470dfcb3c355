// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost and a PLC that misbehaves: what can be read is read, and the rest is named.

#include "support/programs.h"

#include <gtest/gtest.h>

using namespace fxhost_tests;

namespace {

Ended run(const RunningSimulator& plc, const QStringList& arguments)
{
    return fxhost(QStringList{"--link", plc.link()} + arguments);
}

}  // namespace

class Misbehaving : public testing::TestWithParam<Road>
{};

INSTANTIATE_TEST_SUITE_P(Roads, Misbehaving, testing::Values(Road::PseudoTerminal, Road::Tcp),
                         [](const auto& row) { return testing::PrintToString(row.param); });

TEST_P(Misbehaving, ABadRegisterDoesNotTakeItsNeighboursAlong)
{
    // D5 is not there: bytes 0x100A and 0x100B.
    const RunningSimulator plc(GetParam(),
                               {"--baud", "0", "--program", "none", "--holes", "0x100A-0x100B"});
    const Ended ended = run(plc, {"read", "D0:8", "--csv", "-q"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_EQ(ended.out, "D0,0,\nD1,0,\nD2,0,\nD3,0,\nD4,0,\nD5,,refused by the PLC (NAK)\nD6,0,\n"
                         "D7,0,\n");
}

TEST_P(Misbehaving, SomeBadRepliesAreRepeatedAway)
{
    const RunningSimulator plc(
        GetParam(), {"--baud", "0", "--faults", "wrong-sum=0.1,truncated=0.05,junk-before=0.05"});
    const Ended ended = run(plc, {"--retries", "9", "stats", "D0:320", "-n", "20", "--json"});
    EXPECT_EQ(ended.code, 0) << testing::PrintToString(ended);
}

TEST_P(Misbehaving, AWriteThatThePlcRefusesIsReported)
{
    const RunningSimulator plc(GetParam(),
                               {"--baud", "0", "--program", "none", "--faults", "nak=1"});
    const Ended ended = run(plc, {"write", "D0=1", "M0=1", "--csv", "-q"});
    EXPECT_EQ(ended.code, 5);
    EXPECT_EQ(ended.out, "D0,1,0 of 1 frames written: refused by the PLC (NAK)\n"
                         "M0,1,0 of 1 frames written: refused by the PLC (NAK)\n");
}

TEST_P(Misbehaving, AWriteThatDoesNotStayIsFound)
{
    // What is written to D2 shows at D0 too.
    const RunningSimulator plc(GetParam(),
                               {"--baud", "0", "--program", "none", "--mirror", "0x1004:0x1000:2"});
    const Ended ended = run(plc, {"write", "D0=5,6,7", "--verify", "--csv", "-q"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_EQ(ended.out, "D0:3,\"5,6,7\",\"acknowledged, but the PLC holds another value\"\n");
}

TEST_P(Misbehaving, WatchGoesOnWhenTheLinkIsBack)
{
    const RunningSimulator plc(GetParam(),
                               {"--baud", "0", "--program", "none", "--faults", "link-drop:200@5"});
    const Ended ended = run(plc, {"watch", "D0", "-n", "10", "-l", "1", "--csv", "-q"});
    EXPECT_EQ(ended.code, 0) << testing::PrintToString(ended);
    EXPECT_EQ(times(ended.err, "the link was lost"), 1) << ended.err;
    EXPECT_EQ(times(ended.err, "the link is back"), 1) << ended.err;
}
