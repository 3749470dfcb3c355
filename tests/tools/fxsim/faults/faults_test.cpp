// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What each fault makes of a reply, that the same seed makes the same damage, and fault plans from
// and to text.

#include "tests/tools/fxsim/support.h"
#include "tools/fxsim/faults/fault_damage.h"
#include "tools/fxsim/faults/faults.h"

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

const QByteArray& reply = valueOfD100;
const QByteArray acknowledge = "\x06";

QVector<Chunk> damagedBy(const char* plan, const QByteArray& sound, quint64 seed = 1,
                         qint64 exchange = 1)
{
    Dice dice(seed, exchange);
    const ActiveFaults faults(parseFaults(plan), exchange, dice);
    return damaged(sound, readD100, faults, dice);
}

QByteArray bytesOf(const QVector<Chunk>& chunks)
{
    QByteArray bytes;
    for (const Chunk& chunk : chunks)
        bytes += chunk.bytes;
    return bytes;
}

int differingBits(const QByteArray& left, const QByteArray& right)
{
    int bits = 0;
    for (int at = 0; at < left.size(); ++at)
        bits += static_cast<int>(qPopulationCount(static_cast<quint8>(left[at] ^ right[at])));
    return bits;
}

}  // namespace

TEST(Faults, MakeOfAReplyWhatTheySay)
{
    const struct
    {
        const char* plan;
        QByteArray sound;
        QByteArray damaged;
    } rows[] = {
        {"none", reply, reply},
        {"silence@1", reply, ""},
        {"wrong-sum@1", reply, frame("12345678", "A0")},
        {"wrong-sum@1", frame("", "A0"), frame("", "A1")},
        {"wrong-sum@1", acknowledge, acknowledge},
        {"bit7@1", reply, fromHex("82B1B233B43536B7B80341B7")},
        {"truncated:5@1", reply, reply.left(5)},
        {"truncated@1", acknowledge, ""},
        {"lost-stx@1", reply, reply.mid(1)},
        {"lost-etx@1", reply, '\x02' + QByteArray("12345678A7")},
        {"lost-etx@1", acknowledge, acknowledge},
        {"duplicate@1", reply, reply + reply},
        {"duplicate@1", acknowledge, "\x06\x06"},
        {"echo@1", reply, readD100 + reply},
        {"delay@1", reply, reply},
        {"slices@1", reply, reply},
        {"lost-stx@1,lost-etx@1,echo@1", reply, readD100 + "12345678A7"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(bytesOf(damagedBy(row.plan, row.sound)), row.damaged) << row.plan;
}

TEST(Faults, FlippedBitsFlipOneBitUnlessToldOtherwise)
{
    for (quint64 seed = 1; seed <= 200; ++seed) {
        const QByteArray bytes = bytesOf(damagedBy("flipped-bits@1", reply, seed));
        ASSERT_EQ(bytes.size(), reply.size());
        EXPECT_EQ(differingBits(bytes, reply), 1) << "seed " << seed;
    }
}

TEST(Faults, TruncatedIsAlwaysShorter)
{
    for (quint64 seed = 1; seed <= 200; ++seed) {
        const QByteArray bytes = bytesOf(damagedBy("truncated@1", reply, seed));
        EXPECT_LT(bytes.size(), reply.size()) << "seed " << seed;
        EXPECT_TRUE(reply.startsWith(bytes));
    }
}

TEST(Faults, JunkForgesNoControlCharacter)
{
    for (quint64 seed = 1; seed <= 200; ++seed) {
        const QByteArray bytes =
            bytesOf(damagedBy("junk-before@1,junk-after:3@1", acknowledge, seed));
        const int at = bytes.indexOf('\x06');
        EXPECT_GE(at, 1);
        EXPECT_LE(at, 8);
        EXPECT_EQ(bytes.size(), at + 1 + 3);
        for (const char character : bytes)
            EXPECT_TRUE(character == '\x06' || static_cast<quint8>(character) >= 0x20);
    }
}

TEST(Faults, PausesStandWhereTheFaultPutsThem)
{
    const struct
    {
        const char* plan;
        int replyBytes;
        QVector<QPair<int, int>> chunks;  // pause in milliseconds, bytes
    } rows[] = {
        {"delay:800@1", 12, {{800, 12}}},
        {"slices:5@1", 70, {{0, 32}, {5, 32}, {5, 6}}},
        {"duplicate:30@1", 12, {{0, 12}, {30, 12}}},
    };
    for (const auto& row : rows) {
        QVector<QPair<int, int>> chunks;
        for (const Chunk& chunk : damagedBy(row.plan, QByteArray(row.replyBytes, 'x')))
            chunks.append({chunk.pauseMs, chunk.bytes.size()});
        EXPECT_EQ(chunks, row.chunks) << row.plan;
    }
}

TEST(Faults, SeedAloneDecidesTheDamage)
{
    const char* const plan = "flipped-bits:3=0.5,truncated=0.3,junk-before=0.5,silence=0.1";
    int different = 0;
    for (qint64 exchange = 1; exchange <= 200; ++exchange) {
        const QByteArray bytes = bytesOf(damagedBy(plan, reply, 7, exchange));
        EXPECT_EQ(bytesOf(damagedBy(plan, reply, 7, exchange)), bytes);
        different += bytesOf(damagedBy(plan, reply, 8, exchange)) != bytes;
    }
    EXPECT_GT(different, 50);
}

// Known numbers: a change of the generator would make old runs irreproducible.
TEST(Faults, DiceRollTheSameEverywhere)
{
    Dice dice(1, 1);
    EXPECT_EQ(dice.next(), 0xBD17853175C4F325ULL);
    EXPECT_EQ(dice.next(), 0x72C343E604CA3AF6ULL);
}

TEST(Faults, RateIsMetInTheLongRun)
{
    const auto silentAt = [](const char* plan) {
        int silent = 0;
        for (qint64 exchange = 1; exchange <= 10000; ++exchange)
            silent += damagedBy(plan, reply, 1, exchange).isEmpty();
        return silent;
    };
    EXPECT_EQ(silentAt("silence=0"), 0);
    EXPECT_NEAR(silentAt("silence=0.05"), 500, 70);
    EXPECT_EQ(silentAt("silence=1"), 10000);
}

TEST(Faults, ListIsMetExactly)
{
    QVector<qint64> silent;
    for (qint64 exchange = 1; exchange <= 30; ++exchange) {
        if (damagedBy("silence@3+7-9+29-", reply, 1, exchange).isEmpty())
            silent.append(exchange);
    }
    EXPECT_EQ(silent, (QVector<qint64>{3, 7, 8, 9, 29, 30}));
}

namespace {

QString again(const char* text)
{
    return faultPlanText(parseFaults(QString::fromLatin1(text)));
}

}  // namespace

TEST(FaultPlan, ReadsRatesExchangesAndValues)
{
    const FaultPlan plan = parseFaults("silence=0.05,nak=2%,delay:800@3,wrong-sum@7-9+20-,delay@4");
    ASSERT_EQ(plan.size(), 5);
    EXPECT_EQ(plan[0].kind, FaultKind::Silence);
    EXPECT_DOUBLE_EQ(plan[0].rate, 0.05);
    EXPECT_EQ(plan[1].kind, FaultKind::Nak);
    EXPECT_DOUBLE_EQ(plan[1].rate, 0.02);
    EXPECT_EQ(plan[2].spans.at(0).first, 3);
    EXPECT_EQ(plan[2].spans.at(0).last, 3);
    EXPECT_EQ(plan[2].value, 800);
    EXPECT_EQ(plan[3].spans.at(0).last, 9);
    EXPECT_EQ(plan[3].spans.at(1).first, 20);
    EXPECT_GT(plan[3].spans.at(1).last, 1000000000);
    EXPECT_EQ(plan[4].value, 1500) << "the default";
}

TEST(FaultPlan, IsTextAgain)
{
    EXPECT_EQ(again("silence=0.05,nak=2%"), "silence=0.05,nak=0.02");
    EXPECT_EQ(again("delay:800@3+7-9+20-"), "delay:800@3+7-9+20-");
    EXPECT_EQ(again("delay:1500@1"), "delay@1");
    EXPECT_EQ(again("none"), "none");
    EXPECT_EQ(again(""), "none");
}

TEST(FaultPlan, KnowsEveryFaultByName)
{
    for (const char* name : {"silence", "nak", "delay", "wrong-sum", "flipped-bits", "bit7",
                             "truncated", "lost-stx", "lost-etx", "junk-before", "junk-after",
                             "duplicate", "slices", "echo", "link-drop", "power-cycle"}) {
        const QByteArray rule = QByteArray(name) + "@1";
        EXPECT_EQ(again(rule.constData()), QString::fromLatin1(rule));
        EXPECT_TRUE(faultHelp().contains("\n  " + QByteArray(name) + ' ')) << name;
    }
}

TEST(FaultPlan, MixedSharesItsRateAmongTheFaultsOfTheLine)
{
    const FaultPlan plan = parseFaults("mixed:50=0.14");
    ASSERT_EQ(plan.size(), 14);
    for (const FaultRule& rule : plan) {
        EXPECT_DOUBLE_EQ(rule.rate, 0.01);
        EXPECT_NE(rule.kind, FaultKind::LinkDrop);
        EXPECT_NE(rule.kind, FaultKind::PowerCycle);
        EXPECT_EQ(rule.value, rule.kind == FaultKind::Delay ? 50 : factsOf(rule.kind).value);
    }
}

TEST(FaultPlan, SaysWhatIsWrong)
{
    const char* const help = "'help' in place of the plan lists all faults";
    const struct
    {
        const char* plan;
        const char* wrong;
        QString error;
    } rows[] = {
        {"silent=0.1", "silent=0.1", QString("unknown fault (did you mean silence?); ") + help},
        {"noise=0.1", "noise=0.1", QString("unknown fault; ") + help},
        {"silence", "silence", "add a rate or exchanges, as in NAME=0.05 or NAME@3"},
        {"nak@2,silence=1.5", "silence=1.5", "the rate must be 0 to 1, or 0% to 100%"},
        {"silence=nan", "silence=nan", "the rate must be 0 to 1, or 0% to 100%"},
        {"nak@0", "nak@0", "exchanges are numbered from 1, as in @3, @7-9, @20- or @3+7-9"},
        {"nak@9-7", "nak@9-7", "the range of exchanges ends before it starts"},
        {"nak:5@1", "nak:5@1", "nak takes no value"},
        {"delay:-1@1", "delay:-1@1", "invalid value '-1': expected 0 to 600000"},
        {"mixed@3", "mixed@3", "mixed takes a rate, as in mixed=0.1"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(errorText([&row] { parseFaults(row.plan); }),
                  QString("fault '%1': %2").arg(row.wrong, row.error));
}
