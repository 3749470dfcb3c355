// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The mark that a failed read leaves on its areas, and on as many beyond as its breadth wants.

#include "tests/support/driver_fixture.h"

namespace {
struct MarkRow
{
    const char* name;
    const char* registerType;
    int start;
    int count;
    const char* marked;
};

class StaleMarks : public DriverTest, public ::testing::WithParamInterface<MarkRow>
{};

TEST_P(StaleMarks, CoverTwiceTheReadOrFourTimesForCounters)
{
    setUpDriver("1#0#0#1#32");
    const MarkRow& row = GetParam();
    driver.readList << request(row.registerType, row.start, row.count);
    ASSERT_NE("", nextFrame());
    EXPECT_EQ(2, reply(""));
    EXPECT_EQ(row.marked, textOf(driver.dataAreas));
    for (const _DATA_& marked : driver.dataAreas)
        EXPECT_EQ(1, marked.flag0);
}

const MarkRow marks[] = {
    {"Registers", "D", 100, 2, "1#D100 1#D101 1#D102 1#D103"},
    {"SpecialRegisters", "SD", 8000, 1, "1#SD8000 1#SD8001"},
    {"TimerValues", "TV", 0, 1, "1#TV0 1#TV1"},
    {"CounterValues", "CV", 0, 1, "1#CV0 1#CV1"},
    {"LongCounters", "32CV", 200, 1, "1#32CV200 1#32CV201 1#32CV202 1#32CV203"},
    {"Inputs", "X", 0, 1, "1#X0 1#X8"},
    {"Outputs", "Y", 8, 1, "1#Y8 1#Y16"},
    {"Relays", "M", 0, 2, "1#M0 1#M8 1#M16 1#M24"},
    {"States", "S", 0, 1, "1#S0 1#S8"},
    {"SpecialRelays", "SM", 8000, 1, "1#SM8000 1#SM8008"},
    {"Timers", "T", 0, 1, "1#T0 1#T8"},
    {"Counters", "C", 0, 1, "1#C0 1#C8"},
    {"UnalignedRelays", "M", 13, 1, "1#M13 1#M21"},
    {"UnknownType", "Z", 0, 2, ""},
    {"CountZero", "D", 0, 0, ""},
    {"NegativeCount", "D", 0, -3, ""},
};

INSTANTIATE_TEST_SUITE_P(FailedReads, StaleMarks, ::testing::ValuesIn(marks), nameOf<MarkRow>);

class StaleMarksInTime : public DriverTest
{
protected:
    StaleMarksInTime() { setUpDriver("1#0#0#2#32"); }

    void ask(const char* registerType, int start, int count)
    {
        driver.readList.clear();
        driver.readList << request(registerType, start, count);
        nextFrame();
    }
};

TEST_F(StaleMarksInTime, ComeOnlyWithTheFailure)
{
    ask("D", 100, 1);
    EXPECT_EQ(8, reply(""));
    EXPECT_TRUE(driver.dataAreas.isEmpty());
    EXPECT_EQ(2, reply(""));
    EXPECT_EQ(1, area("D", 100).flag0);
}

TEST_F(StaleMarksInTime, KeepTheLastGoodValue)
{
    poll("D", 100, 1, "<STX>1234<ETX>CD");
    ask("D", 100, 1);
    reply("");
    reply("");
    EXPECT_EQ(1, area("D", 100).flag0);
    EXPECT_EQ((Bytes{0x12, 0x34}), values("D", 100, 1, 2));
}

TEST_F(StaleMarksInTime, KeepAPendingWrite)
{
    write("D", 100, {1, 2}, 1);
    driver.writeList.clear();
    ask("D", 100, 1);
    reply("");
    reply("");
    EXPECT_EQ((Bytes{1, 2}), values("D", 100, 1, 2));
}

TEST_F(StaleMarksInTime, ReportNothing)
{
    mark("D", 100, 1);
    ask("D", 100, 1);
    reply("");
    reply("");
    EXPECT_EQ(Texts(), calls);
}

// The mark goes with any good read, the waiting write only with one that brings another value.
TEST_F(StaleMarksInTime, GoodReadUndoesAWaitingWriteOnlyIfTheValueHasChanged)
{
    poll("D", 100, 1, "<STX>1234<ETX>CD");
    ask("D", 100, 1);
    reply("");
    reply("");
    write("D", 100, {1, 2}, 1);
    driver.writeList.clear();

    poll("D", 100, 1, "<STX>1234<ETX>CD");
    EXPECT_EQ(0, area("D", 100).flag0);
    EXPECT_EQ((Bytes{1, 2}), values("D", 100, 1, 2));

    area("D", 100).flag0 = 1;
    poll("D", 100, 1, "<STX>0000<ETX>C3");
    EXPECT_EQ(0, area("D", 100).flag0);
    EXPECT_EQ((Bytes{0, 0}), values("D", 100, 1, 2));
}

TEST_F(StaleMarksInTime, GoodReadClearsTheMarksOfWhatItCoversInEveryGroup)
{
    struct Read
    {
        const char* registerType;
        int start;
        const char* reply;
        int beyond;
    };
    for (const Read& read :
         {Read{"D", 100, "<STX>0000<ETX>C3", 101}, Read{"M", 8, "<STX>00<ETX>63", 16},
          Read{"32CV", 200, "<STX>00000000<ETX>83", 201}}) {
        ask(read.registerType, read.start, 1);
        reply("");
        reply("");
        EXPECT_EQ(1, area(read.registerType, read.start).flag0);
        poll(read.registerType, read.start, 1, read.reply);
        EXPECT_EQ(0, area(read.registerType, read.start).flag0) << read.registerType;
        EXPECT_EQ(1, area(read.registerType, read.beyond).flag0) << read.registerType;
    }
}
}  // namespace
