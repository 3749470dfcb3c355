// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Values over several registers, of a PLC that changes all its registers after each exchange: a
// value whose registers differ was put together from two replies.

#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/poller.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace fxtools;
using namespace tool_tests;

namespace {

constexpr int wordsPerFrame = 5;
constexpr int changedWords = 80;
constexpr int changedBytesOfBits = 16;

RegisterRange wide(const char* address, int registersEach)
{
    RegisterRange value = range(address);
    value.together = registersEach;
    return value;
}

class WideValues : public testing::Test
{
protected:
    WideValues()
    {
        change();
        bench.loop.onExchange = [this](const Exchange&) { change(); };
    }

    void change()
    {
        ++m_generation;
        for (int number = 0; number < changedWords; ++number)
            bench.setD(number, m_generation);
        for (int byte = 0; byte < changedBytesOfBits; ++byte)
            bench.line.memory().setValue(addressOfM0 + byte, 1, m_generation % 2 == 0 ? 0xFF : 0);
    }

    // Whether it was read, from one reply.
    static testing::AssertionResult isWhole(const Poller& poller, const RegisterRange& value)
    {
        const QVector<quint32> registers = poller.values(value);
        for (int index = 0; index < value.count; ++index) {
            if (poller.problemOf(value, index))
                return testing::AssertionFailure()
                       << value.nameOf(index).toStdString() << " not read";
            if (registers[index] != registers[index - index % value.together])
                return testing::AssertionFailure() << value.nameOf(index).toStdString() << " torn";
        }
        return testing::AssertionSuccess();
    }

    void expectWhole(const QVector<RegisterRange>& values, const Planner& planner = {})
    {
        Poller poller(bench.loop, catalogue(), values, planner);
        for (int cycle = 1; cycle <= 3; ++cycle) {
            const quint32 before = m_generation;
            ASSERT_EQ(poller.poll(), RoundEnd::Done);
            for (const RegisterRange& value : values) {
                EXPECT_TRUE(isWhole(poller, value)) << "in cycle " << cycle;
                const QVector<quint32> held = poller.values(value);
                EXPECT_TRUE(value.type.isBit() ||
                            *std::min_element(held.begin(), held.end()) >= before);
            }
        }
    }

    Bench bench{badLine(0, ""), SessionSettings{2, wordsPerFrame}};

private:
    quint32 m_generation = 0;
};

}  // namespace

// As one range their registers would be cut behind each fifth.
TEST_F(WideValues, AreNotDividedByAPlan)
{
    const QVector<RegisterRange> values = {wide("D1:62", 2), range("D64:3"), wide("D67:4", 4)};
    expectWhole(values);
    expectWhole(values, apart);
}

TEST_F(WideValues, AreNotMixedWithOthersThatShareTheirRegisters)
{
    expectWhole({wide("D0:4", 4), wide("D3:4", 4), wide("D6:4", 4)}, apart);
    expectWhole({wide("M4:16", 16), wide("M12:16", 16)}, apart);
}

TEST_F(WideValues, StayAsTheyWereReadWhileAPartIsReadForAnother)
{
    const RegisterRange group = wide("M4:16", 16);
    Poller poller(bench.loop, catalogue(), {range("M0"), group}, apart,
                  {[] { return QVector<RegisterRange>{range("M0")}; }, [](const auto&) {}});
    for (int turn = 0; turn < 4; ++turn) {
        poller.poll();
        EXPECT_TRUE(isWhole(poller, group)) << "in turn " << turn;
    }
}

// A part that is read for another value is no reason to show the old value as a good one.
TEST_F(WideValues, KeepTheirProblemUntilAllIsReadAgain)
{
    const RegisterRange pair = wide("D10:2", 2);
    QVector<RegisterRange> next = {pair, range("D10"), range("D11"), pair};
    Poller poller(
        bench.loop, catalogue(), {pair}, apart,
        {[&next] { return QVector<RegisterRange>{next.takeFirst()}; }, [](const auto&) {}});
    poller.poll();
    bench.line.setFaults("silence@1-2");
    poller.poll();
    for (int turn = 0; turn < 3; ++turn) {
        EXPECT_EQ(poller.problemOf(pair, 0), ReplyVerdict::Silence) << "in turn " << turn;
        poller.poll();
    }
    EXPECT_TRUE(isWhole(poller, pair));
}

// The PLC refuses the text, but not the word with which it begins.
TEST_F(WideValues, ThatAreRefusedLeaveTheirPartsReadable)
{
    bench.refuseD(3, 3);
    const RegisterRange text = wide("D0:4", 4);
    Poller poller(bench.loop, catalogue(), {range("D0"), text, range("D4")});
    for (int cycle = 0; cycle < 3; ++cycle) {
        poller.poll();
        EXPECT_FALSE(poller.problemOf(range("D0"), 0)) << "in cycle " << cycle;
        EXPECT_FALSE(poller.problemOf(range("D4"), 0)) << "in cycle " << cycle;
        EXPECT_EQ(poller.problemOf(text, 0), ReplyVerdict::Refused) << "in cycle " << cycle;
        EXPECT_GE(poller.values(range("D0"))[0] + 10, poller.values(range("D4"))[0]);
    }
}

// The refused value shares its first registers with another that can be read.
TEST_F(WideValues, ThatAreRefusedLeaveThoseThatShareTheirRegistersFresh)
{
    bench.refuseD(6, 6);
    const RegisterRange readable = wide("D0:4", 4);
    const RegisterRange refused = wide("D3:4", 4);
    Poller poller(bench.loop, catalogue(), {readable, refused}, apart);
    poller.poll();
    for (int cycle = 1; cycle < 4; ++cycle) {
        const quint32 held = poller.values(readable)[0];
        poller.poll();
        EXPECT_TRUE(isWhole(poller, readable)) << "in cycle " << cycle;
        EXPECT_EQ(poller.problemOf(refused, 0), ReplyVerdict::Refused) << "in cycle " << cycle;
        EXPECT_GT(poller.values(readable)[0], held) << "in cycle " << cycle;
    }
}

TEST_F(WideValues, TooLongForOneReplyAreAnError)
{
    const auto mistakeIn = [this](const RegisterRange& value) {
        try {
            const Poller poller(bench.loop, catalogue(), {value});
            return std::string();
        } catch (const Failure& failure) {
            return failure.text().toStdString();
        }
    };
    EXPECT_EQ(mistakeIn(wide("D0:5", 5)), "");
    EXPECT_EQ(
        mistakeIn(wide("D0:6", 6)),
        "D0:6 is one value, and one reply brings at most 5 of its registers; read it in parts");
    EXPECT_EQ(mistakeIn(range("D0:6")), "");
}
