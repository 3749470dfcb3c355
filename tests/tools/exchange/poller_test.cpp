// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Registers that the PLC refuses, or refuses later, or no more: each other one stays fresh, and
// each that is not says so. Whoever asks in vain too often is found by the frames on the line.

#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/poller.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr int cyclesUntilAskedAgain = 50;

class Polling : public testing::Test
{
protected:
    void start(std::initializer_list<const char*> addresses)
    {
        for (const char* const address : addresses)
            ranges.append(range(address));
        poller.emplace(bench.loop, catalogue(), ranges);
    }

    RoundEnd poll(int cycles = 1)
    {
        RoundEnd end = RoundEnd::Done;
        for (int cycle = 0; cycle < cycles; ++cycle)
            end = poller->poll();
        return end;
    }

    // Gives every word of the PLC a new value, polls, and names what is not the PLC's: with the
    // problem when there is one, as "stale" when an old value stands without any.
    std::string problemsAfterPolling()
    {
        ++m_generation;
        for (int address = 0; address < fxsim::addressableBytes; address += 2)
            bench.line.memory().setValue(address, 2, wordNaming(address) + m_generation * 257);
        poller->poll();
        return problems();
    }

    std::string problems() const
    {
        QStringList all;
        for (const RegisterRange& one : ranges) {
            const QVector<quint32> values = poller->values(one);
            for (int index = 0; index < one.count; ++index) {
                const auto problem = poller->problemOf(one, index);
                if (problem)
                    all += one.nameOf(index) + ' ' + verdictName(*problem);
                else if (values[index] != held(one.type, one.first + index))
                    all += one.nameOf(index) + " stale";
            }
        }
        return all.join(", ").toStdString();
    }

    // And so it stays: the cycle after a hole was found is another than the one that finds it.
    void expectProblems(const std::string& expected, int cycles = 2)
    {
        for (int cycle = 1; cycle <= cycles; ++cycle)
            EXPECT_EQ(problemsAfterPolling(), expected) << "in cycle " << cycle;
    }

    // The PLC answers this many frames in one cycle.
    int framesOfACycle()
    {
        const int before = bench.line.sent().size();
        poller->poll();
        return bench.line.sent().size() - before;
    }

    quint32 held(const RegisterType& type, int number) const
    {
        if (type.isBit())
            return bench.line.memory().bit(addressOfM0 + number / 8, number % 8) ? 1 : 0;
        return type.width == RegisterWidth::Word
                   ? bench.plcWord(addressOfD(number))
                   : bench.plcDoubleWord(addressOf32CV200 + 4 * (number - 200));
    }

    mutable Bench bench{badLine(0, ""), SessionSettings{2, 32}};
    QVector<RegisterRange> ranges;
    std::optional<Poller> poller;

private:
    quint32 m_generation = 0;
};

}  // namespace

TEST_F(Polling, ReadsEveryRegisterOfThePlan)
{
    start({"D0:100", "M3:20", "D200", "32CV200:40"});
    expectProblems("");
    EXPECT_EQ(framesOfACycle(), 7 + 1 + 1 + 3);
    EXPECT_EQ(poll(), RoundEnd::Done);
}

// A small PLC refuses more than 64 bytes; a plan of counters alone could ask for 128.
TEST_F(Polling, AsksForNoMoreThanAFrameOfCounters)
{
    start({"32CV200:56"});
    EXPECT_EQ(problemsAfterPolling(), "");
    EXPECT_EQ(bench.loop.statistics().of(ReplyVerdict::Refused), 0);
    EXPECT_EQ(framesOfACycle(), 4);
}

TEST(PollingOfSingleWords, LosesNoNeighbourOfARefusedOne)
{
    Bench bench(badLine(0, ""), SessionSettings{2, 1});
    bench.refuseD(1, 1);
    Poller poller(bench.loop, catalogue(), {range("D0:3")});
    poller.poll();
    bench.setD(0, 7);
    bench.setD(2, 9);
    poller.poll();
    EXPECT_EQ(poller.values(range("D0:3")), (QVector<quint32>{7, 0, 9}));
    EXPECT_EQ(poller.problemOf(range("D0:3"), 1), ReplyVerdict::Refused);
}

// A block holds 32 registers: the hole stands in the first, in the middle and in the last one.
TEST_F(Polling, KeepsTheRegistersBesideARefusedBlockInThePlan)
{
    for (const int hole : {0, 5, 31, 32, 40, 99}) {
        bench.line.refuseNothing();
        bench.refuseD(hole, hole);
        ranges.clear();
        start({"D0:100"});
        const std::string refused = "D" + std::to_string(hole) + " refused";
        expectProblems(refused, 3);
    }
}

// One-off reads are for pieces of the refused block: the others stay in the plan.
TEST_F(Polling, TakesNothingBehindARefusedBlockOutOfThePlan)
{
    bench.refuseD(5, 5);
    start({"D0:40"});
    poll();
    EXPECT_EQ(framesOfACycle(), 7);
}

TEST_F(Polling, SeeksAHoleAmongTheWantedRegistersOnly)
{
    bench.refuseD(40, 40);
    start({"D0:50"});
    poll();
    for (const QByteArray& frame : bench.line.sent()) {
        const int address = frame.mid(2, 4).toInt(nullptr, 16);
        EXPECT_LE(address + frame.mid(6, 2).toInt(nullptr, 16), addressOfD(50)) << frame.data();
    }
}

TEST_F(Polling, NamesEveryRefusedRegisterAndNoOther)
{
    const auto words = [](int first, int last) {
        return fxsim::AddressRange{addressOfD(first), addressOfD(last) + 1};
    };
    const int secondByteOfM = addressOfM0 + 1;  // bits are read by whole bytes: M8 to M15
    const int counter217 = addressOf32CV200 + 4 * 17;
    const struct
    {
        std::initializer_list<const char*> addresses;
        QVector<fxsim::AddressRange> holes;
        const char* problems;
    } rows[] = {
        {{"D0:4", "D6:4", "M0:8", "32CV200"}, {words(1, 1)}, "D1 refused"},
        {{"D0:4", "D6:4"}, {words(5, 5)}, ""},  // the plan reads over a gap that nobody asked for
        {{"D0:64", "D200:2"},
         {words(3, 4), words(40, 40), words(200, 201)},
         "D3 refused, D4 refused, D40 refused, D200 refused, D201 refused"},
        {{"M3:10", "M16:8"},
         {{secondByteOfM, secondByteOfM}},
         "M8 refused, M9 refused, M10 refused, M11 refused, M12 refused"},
        {{"32CV200:40"}, {{counter217, counter217}}, "32CV217 refused"},
    };
    for (const auto& row : rows) {
        bench.line.refuseNothing();
        bench.line.memory().setMissing(row.holes);
        ranges.clear();
        start(row.addresses);
        expectProblems(row.problems);
    }
}

TEST_F(Polling, NamesAHoleThatOpensLaterInThePlan)
{
    start({"D0:100"});
    EXPECT_EQ(problemsAfterPolling(), "");
    bench.refuseD(40, 40);
    expectProblems("D40 refused");
}

TEST_F(Polling, NamesAHoleThatOpensLaterInAPiece)
{
    bench.refuseD(5, 5);
    start({"D0:64"});
    EXPECT_EQ(problemsAfterPolling(), "D5 refused");
    bench.refuseD(20, 20);
    EXPECT_EQ(problemsAfterPolling(), "D5 refused, D20 refused");
    bench.refuseD(1, 1);
    expectProblems("D1 refused, D5 refused, D20 refused");
}

TEST_F(Polling, FindsTheRefusedByteAmongAnyBits)
{
    for (int first = 0; first < 8; ++first) {
        bench.line.refuseNothing();
        bench.line.refuse(addressOfM0 + 2, addressOfM0 + 2);
        RegisterRange bits = range("M0:20");
        bits.first = first;
        poller.emplace(bench.loop, catalogue(), QVector<RegisterRange>{bits});
        poller->poll();
        for (int number = first; number < first + bits.count; ++number) {
            EXPECT_EQ(poller->problemOf(bits, number - first).has_value(),
                      number >= 16 && number < 24)
                << first << " " << number;
        }
    }
}

TEST_F(Polling, AsksForRefusedRegistersNowAndThenOnly)
{
    bench.refuseD(5, 5);
    start({"D0:64"});
    poll();
    const int frames = framesOfACycle();
    const int before = bench.line.sent().size();
    poll(cyclesUntilAskedAgain - 3);
    EXPECT_EQ(bench.line.sent().size() - before, frames * (cyclesUntilAskedAgain - 3));
    EXPECT_GT(framesOfACycle(), frames);
    EXPECT_EQ(framesOfACycle(), frames);
}

TEST_F(Polling, TakesARecoveredRegisterBack)
{
    bench.refuseD(5, 5);
    start({"D0:64"});
    const int frames = 2;
    EXPECT_EQ(problemsAfterPolling(), "D5 refused");
    bench.line.refuseNothing();
    poll(cyclesUntilAskedAgain);
    expectProblems("");
    EXPECT_EQ(framesOfACycle(), frames);  // as if it had never been away
}

TEST_F(Polling, TakesARecoveredRegisterBackBesideOneThatStaysAway)
{
    bench.refuseD(5, 5);
    bench.refuseD(20, 20);
    start({"D0:64"});
    EXPECT_EQ(problemsAfterPolling(), "D5 refused, D20 refused");
    bench.line.refuseNothing();
    bench.refuseD(20, 20);
    poll(cyclesUntilAskedAgain);
    expectProblems("D20 refused");
    bench.line.refuseNothing();
    poll(cyclesUntilAskedAgain);
    EXPECT_EQ(problemsAfterPolling(), "");
}

TEST_F(Polling, NamesTheReasonOfTheLastTimeItAsked)
{
    bench.refuseD(5, 5);
    start({"D0:64"});
    poll(cyclesUntilAskedAgain - 1);
    bench.line.setFaults("silence@7-");
    poll();
    bench.line.setFaults("");
    EXPECT_EQ(problemsAfterPolling(), "D5 silence");
}

TEST_F(Polling, TakesRegistersBackWhenAllWereRefused)
{
    bench.refuseD(0, 1);
    start({"D0:2"});
    expectProblems("D0 refused, D1 refused");
    bench.line.refuseNothing();
    poll(cyclesUntilAskedAgain);
    EXPECT_EQ(problemsAfterPolling(), "");
    poll(cyclesUntilAskedAgain - 2);
    EXPECT_EQ(framesOfACycle(), 1) << "nothing is left to ask again";
}

// What was read before the link went is not old; the rest is.
TEST_F(Polling, TellsWhatWasReadBeforeTheLinkWasLost)
{
    const struct
    {
        const char* faults;
        const char* problems;
    } rows[] = {
        {"link-drop@1", "D0 link-lost, D1 link-lost, D2 link-lost, D3 link-lost, D4 link-lost, "
                        "D5 refused, D6 link-lost, D7 link-lost"},
        {"link-drop@2", "D4 link-lost, D5 refused, D6 link-lost, D7 link-lost"},
        {"link-drop@3", "D5 refused, D6 link-lost, D7 link-lost"},
    };
    bench.refuseD(5, 5);
    start({"D0:8"});
    for (const auto& row : rows) {
        expectProblems("D5 refused");
        EXPECT_EQ(framesOfACycle(), 3);  // D0 to D3, D4, D6 and D7
        bench.line.setFaults(row.faults);
        EXPECT_EQ(poll(), RoundEnd::LinkLost);
        EXPECT_EQ(problems(), row.problems);
        bench.line.open();
    }
}

TEST_F(Polling, TellsWhatWasReadWhenTheLinkIsLostWhileAHoleIsSought)
{
    bench.refuseD(13, 13);
    start({"D0:16", "D100"});
    // The first block twice, the other, D0 to D15 twice, D0 to D7, then D8 to D15.
    bench.line.setFaults("link-drop@7");
    EXPECT_EQ(poll(), RoundEnd::LinkLost);
    EXPECT_EQ(problems(), "D8 link-lost, D9 link-lost, D10 link-lost, D11 link-lost, "
                          "D12 link-lost, D13 link-lost, D14 link-lost, D15 link-lost");
}

TEST_F(Polling, TellsWhichBlocksWereReadBeforeTheLinkWasLost)
{
    start({"D0:2", "D100:2"});
    bench.line.setFaults("link-drop@2");
    EXPECT_EQ(poll(), RoundEnd::LinkLost);
    EXPECT_EQ(problems(), "D100 link-lost, D101 link-lost");
    bench.line.open();
    EXPECT_EQ(poll(), RoundEnd::Done);
    EXPECT_EQ(problems(), "");
}

TEST_F(Polling, GoesOnWhenTheLinkIsBack)
{
    start({"D0:64"});
    bench.loop.onLinkLost = [this] {
        bench.line.open();
        return true;
    };
    bench.line.setFaults("link-drop@2");
    EXPECT_EQ(poll(), RoundEnd::Done);
    EXPECT_EQ(problems(), "");
}

TEST_F(Polling, NamesABlockThatGotNoGoodAnswerInThisCycleOnly)
{
    start({"D0:2", "D100:2"});
    bench.line.setFaults("silence@2-3");
    EXPECT_EQ(problemsAfterPolling(), "D100 silence, D101 silence");
    EXPECT_EQ(problemsAfterPolling(), "");
    bench.line.setFaults("wrong-sum@1-2");
    EXPECT_EQ(problemsAfterPolling(), "D0 wrong-sum, D1 wrong-sum");
    EXPECT_EQ(problemsAfterPolling(), "");
}

TEST_F(Polling, SaysOfThisCycleWhyNothingWasRead)
{
    start({"D0:2", "D100:2"});
    bench.line.setFaults("wrong-sum@3-4");
    poll();
    EXPECT_EQ(poll(), RoundEnd::Done);
    EXPECT_EQ(problems(), "D0 wrong-sum, D1 wrong-sum");
    bench.line.setFaults("link-drop@1");
    EXPECT_EQ(poll(), RoundEnd::LinkLost);
    EXPECT_EQ(problems(), "D0 link-lost, D1 link-lost, D100 link-lost, D101 link-lost");
}

TEST_F(Polling, NamesAPieceThatGotNoGoodAnswerAndKeepsIt)
{
    bench.refuseD(5, 5);
    start({"D0:8"});
    problemsAfterPolling();
    bench.line.setFaults("silence@2-3");
    EXPECT_EQ(problemsAfterPolling(), "D4 silence, D5 refused");
    EXPECT_EQ(problemsAfterPolling(), "D5 refused");
}

TEST_F(Polling, EndsWhenThePlcIsSwitchedOffWhilePiecesAreRead)
{
    bench.refuseD(5, 5);
    start({"D0:8"});
    problemsAfterPolling();
    bench.line.setFaults("power-cycle:600000@1");
    EXPECT_EQ(poll(), RoundEnd::NoAnswer);
    EXPECT_EQ(poller->problemOf(ranges[0], 7), ReplyVerdict::Silence);
}

TEST_F(Polling, DoesNotAskASilentPlcForEverything)
{
    start({"D0:2000"});
    bench.line.setFaults("silence=1");
    EXPECT_EQ(poll(), RoundEnd::NoAnswer);
    EXPECT_EQ(bench.loop.statistics().total().sent, 2);
    EXPECT_EQ(poller->problemOf(ranges[0], 0), ReplyVerdict::Silence);
    EXPECT_EQ(poller->problemOf(ranges[0], 1999), ReplyVerdict::Silence);
    bench.line.setFaults("");
    EXPECT_EQ(problemsAfterPolling(), "");
}
