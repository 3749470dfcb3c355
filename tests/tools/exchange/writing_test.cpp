// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Writes of the host, judged by the PLC's own memory: until a write has ended the driver answers
// with what was written, wherever it went.

#include "tests/tools/support/virtual_line.h"
#include "tools/exchange/checked_write.h"

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

QVector<quint32> differentValues(int count, int valueBytes)
{
    QVector<quint32> values;
    for (int index = 0; index < count; ++index) {
        const quint32 value = 0x01020304U * static_cast<quint32>(index + 1);
        values.append(valueBytes == 4 ? value : value & 0xFFFF);
    }
    return values;
}

QByteArray asBytes(const QVector<quint32>& values, int valueBytes)
{
    QByteArray bytes;
    for (const quint32 value : values) {
        for (int byte = 0; byte < valueBytes; ++byte)
            bytes.append(static_cast<char>(value >> 8 * byte & 0xFF));
    }
    return bytes;
}

}  // namespace

TEST(WordWrites, OfAnyNumberOfFramesChangeTheirRegistersAndNothingElse)
{
    const struct
    {
        const char* first;
        int address;  // where it is written on the wire
        int valueBytes;
        int perFrame;
    } types[] = {
        {"D100", 0x10C8, 2, 32},   {"TV3", 0x0806, 2, 32},     {"CV5", 0x0A0A, 2, 32},
        {"SD8002", 0x0F04, 2, 32}, {"32CV200", 0x0C00, 4, 16},
    };
    for (const auto& type : types) {
        const int frame = type.perFrame;
        for (const int count : {1, frame - 1, frame, frame + 1, 2 * frame + 1, 56}) {
            Bench bench;
            fillWithOwnAddresses(bench.line.memory());
            const QVector<quint32> values = differentValues(count, type.valueBytes);
            QByteArray expected = bench.line.memory().image();
            expected.replace(type.address, count * type.valueBytes,
                             asBytes(values, type.valueBytes));
            RegisterRange whole = range(type.first);
            whole.count = count;
            const WriteOutcome outcome = writeRegisters(bench.loop, whole, values);
            EXPECT_TRUE(outcome.isGood()) << type.first << ' ' << count;
            EXPECT_EQ(outcome.frames, (count + frame - 1) / frame) << type.first << ' ' << count;
            EXPECT_TRUE(bench.line.memory().image() == expected) << type.first << ' ' << count;
        }
    }
}

// Without a plan of its own the driver sends three frames.
TEST(WordWrites, PollTheirFirstRegisterAlone)
{
    Bench bench(badLine(0, ""), SessionSettings{3, 1});
    EXPECT_TRUE(writeRegisters(bench.loop, range("D100:5"), {1, 2, 3, 4, 5}).isGood());
    int reads = 0;
    for (const QByteArray& frame : bench.line.framesSent()) {
        if (frame[1] != '0')
            continue;
        ++reads;
        EXPECT_EQ(frame.mid(2, 4), "10C8");
    }
    EXPECT_GT(reads, 0);
}

// A PLC that runs its program between two frames would meet a value that is half old, half new.
TEST(WideWrites, AreNeverCutWithinAValue)
{
    const struct
    {
        int wordsPerFrame;
        int together;
        QVector<int> words;  // of each frame
    } rows[] = {
        {3, 2, {2, 2, 2}}, {5, 2, {4, 2}}, {5, 3, {3, 3}}, {4, 2, {4, 2}}, {4, 6, {4, 2}},
    };
    for (const auto& row : rows) {
        Bench bench(badLine(0, ""), SessionSettings{3, row.wordsPerFrame});
        RegisterRange whole = range("D100:6");
        whole.together = row.together;
        const QVector<quint32> values = differentValues(6, 2);
        const WriteOutcome outcome = writeRegisters(bench.loop, whole, values);
        EXPECT_TRUE(outcome.isGood());
        EXPECT_EQ(outcome.frames, row.words.size());
        QVector<int> words;
        for (const QByteArray& frame : bench.line.framesSent()) {
            if (frame[1] == '1')
                words += frame.mid(6, 2).toInt(nullptr, 16) / 2;
        }
        EXPECT_EQ(words, row.words) << row.wordsPerFrame << ' ' << row.together;
        EXPECT_EQ(bench.line.memory().read(0x10C8, 12), asBytes(values, 2));
    }
}

// An odd limit and one below a counter's two words.
TEST(CounterWrites, AreNeverCutWithinACounter)
{
    for (const int wordsPerFrame : {2, 3, 31, 33}) {
        Bench bench(badLine(0, ""), SessionSettings{3, wordsPerFrame});
        const QVector<quint32> values = differentValues(56, 4);
        EXPECT_TRUE(writeRegisters(bench.loop, range("32CV200:56"), values).isGood());
        EXPECT_EQ(bench.line.memory().read(addressOf32CV200, 56 * 4), asBytes(values, 4))
            << wordsPerFrame;
    }
}

// A host write to an input never leaves, and the driver answers with it from then on.
TEST(ReadBack, IsThePlcsValueAndNotTheWrittenOne)
{
    Bench bench;
    bench.session.write(range("X0"), {1});
    ASSERT_EQ(bench.session.values(range("X0")), QVector<quint32>({1}));
    EXPECT_EQ(readBack(bench.loop, range("X0")), ReplyVerdict::Good);
    EXPECT_EQ(bench.session.values(range("X0")), QVector<quint32>({0}));
}

// The PLC answers again while the driver would still repeat the write.
TEST(ReadBack, IsNoRepetitionOfAWriteThatGotNoAnswer)
{
    Bench bench(badLine(0, "silence@1-3", fxsim::EnquiryMode::Ignored), SessionSettings{10, 32});
    const WriteOutcome outcome = writeRegisters(bench.loop, range("D0"), {77});
    ASSERT_EQ(outcome.problem, ReplyVerdict::Silence);
    EXPECT_EQ(readBack(bench.loop, range("D0")), ReplyVerdict::Good);
    EXPECT_EQ(bench.loop.statistics().of(ExchangeKind::Write).sent, 3);
}

namespace {

std::string texts(const QVector<RegisterRange>& ranges)
{
    QStringList all;
    for (const RegisterRange& one : ranges)
        all += one.text();
    return all.join(' ').toStdString();
}

}  // namespace

TEST(BrokenWrites, TellWhatArrivedAndWhatMayHave)
{
    const struct
    {
        const char* address;
        const char* faults;
        ReplyVerdict problem;
        int frames;
        const char* acknowledged;
        const char* uncertain;
    } rows[] = {
        {"D0:96", "nak@2", ReplyVerdict::Refused, 3, "D0:32 D64:32", ""},
        {"D0:70", "silence@3", ReplyVerdict::Silence, 3, "D0:32 D32:32", "D64:6"},
        {"D0:96", "nak@1,silence@2", ReplyVerdict::Refused, 3, "D64:32", "D32:32"},  // the first
        {"D0:96", "link-drop@2", ReplyVerdict::LinkLost, 3, "D0:32", "D32:32"},
        {"32CV200:56", "silence@3", ReplyVerdict::Silence, 4, "32CV200:16 32CV216:16",
         "32CV232:16"},
        {"M8:3", "silence@2", ReplyVerdict::Silence, 3, "M8 M10", "M9"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.faults);
        Bench bench(badLine(0, row.faults), SessionSettings{1, 32});
        const RegisterRange whole = range(row.address);
        const QVector<quint32> values = differentValues(whole.count, whole.type.valueBytes());
        const WriteOutcome outcome = writeRegisters(bench.loop, whole, values);
        EXPECT_EQ(outcome.problem, row.problem);
        EXPECT_EQ(outcome.frames, row.frames);
        EXPECT_EQ(texts(outcome.acknowledged), row.acknowledged);
        EXPECT_EQ(texts(outcome.uncertain), row.uncertain);
    }
}

TEST(RetriedWrite, ThatIsRefusedAfterAnUnansweredAttemptMayHaveArrived)
{
    Bench bench(badLine(0, "silence@1,nak@2-"), SessionSettings{2, 32});
    const WriteOutcome outcome = writeRegisters(bench.loop, range("D0"), {77});
    EXPECT_EQ(outcome.problem, ReplyVerdict::Refused);
    EXPECT_EQ(texts(outcome.uncertain), "D0");
    EXPECT_EQ(bench.plcWord(addressOfD0), 77U);
}

// Its value would be too old by then.
TEST(CheckedWrite, ThatLosesTheLinkIsNotSentWhenItIsBack)
{
    for (const char* const faults : {"link-drop@1", "link-drop@2"}) {
        Bench bench(badLine(0, faults));
        const Assignment assignment =
            parseAssignment("D0:64=" + QString("7,").repeated(63) + "7", catalogue(), ValueStyle());
        const CheckedWrite write = writeAndReadBack(bench.loop, assignment, Check::OnlyAsNeeded);
        ASSERT_TRUE(write.outcome);
        EXPECT_EQ(write.outcome->problem, ReplyVerdict::LinkLost);
        EXPECT_FALSE(write.isThere());
        const qint64 sent = bench.loop.statistics().of(ExchangeKind::Write).sent;
        bench.line.open();
        bench.session.setPlan({range("D0")});
        EXPECT_EQ(pollCycle(bench.loop, 1).end, RoundEnd::Done);
        EXPECT_EQ(bench.loop.statistics().of(ExchangeKind::Write).sent, sent) << faults;
        EXPECT_EQ(bench.plcWord(addressOfD(63)), 0U) << faults;
    }
}

TEST(CheckedWrite, ThatIsRefusedIsReadBackAllTheSame)
{
    Bench bench(badLine(0, "nak@2"), SessionSettings{1, 32});
    bench.setD(0, 5);
    const Assignment assignment = parseAssignment("D0=7", catalogue(), ValueStyle());
    const CheckedWrite write = writeAndReadBack(bench.loop, assignment, Check::BeforeAndAfter);
    EXPECT_EQ(write.outcome->problem, ReplyVerdict::Refused);
    EXPECT_EQ(write.before, QVector<quint32>({5}));
    EXPECT_EQ(write.after, QVector<quint32>({5}));
}
