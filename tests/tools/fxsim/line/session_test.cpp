// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A host's bytes in, a PLC's bytes out: session and simulator together, with the time given by the
// tests.

#include "tests/tools/fxsim/support.h"
#include "tools/fxsim/line/session.h"
#include "tools/fxsim/line/simulator.h"
#include "tools/fxsim/plc/devices.h"
#include "tools/fxsim/plc/model.h"
#include "tools/fxsim/plc/number_text.h"
#include "tools/fxsim/plc/sample_program.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

struct Bench
{
    explicit Bench(const Settings& settings = Settings(),
                   std::unique_ptr<Program> program = nullptr)
        : plc(settings, std::move(program), 0), session(plc, "test")
    {}

    // Everything that comes back within ten minutes.
    QByteArray answer(const QByteArray& bytes)
    {
        session.receive(bytes, nowUs);
        return session.takeDue(nowUs + 600000000);
    }

    Simulator plc;
    Session session;
    qint64 nowUs = 1000;
};

Settings withFaults(const char* plan)
{
    Settings settings;
    settings.faults = parseFaults(plan);
    return settings;
}

}  // namespace

TEST(Session, AnswersAReadAndAWrite)
{
    Bench bench;
    EXPECT_EQ(bench.answer(readD100), zerosOfD100);
    EXPECT_EQ(bench.answer(writeD100 + readD100), "\x06" + valueOfD100);
}

TEST(Session, CarriesSixtyFourBytesAndNoMore)
{
    Bench bench;
    EXPECT_EQ(bench.answer(frame("010C840", "73")).size(), 1 + 2 * 64 + 1 + 2);
    EXPECT_EQ(bench.answer(frame("010C841", "74")), "\x15");
}

TEST(Session, BadFrameGetsNakOrSilence)
{
    Bench strict;
    EXPECT_EQ(strict.answer(damagedRead), "\x15");
    Settings settings;
    settings.onError = OnError::Silence;
    Bench silent(settings);
    EXPECT_EQ(silent.answer(damagedRead), "");
    EXPECT_EQ(silent.answer('\x02' + QByteArray(5000, '0')), "");
    EXPECT_EQ(silent.answer(readD100), zerosOfD100);
}

TEST(Session, FrameWithoutEndIsRefusedOnce)
{
    Bench bench;
    EXPECT_EQ(bench.answer('\x02' + QByteArray(5000, '0')), "\x15");
    EXPECT_TRUE(bench.plc.statistics().text().contains("overlong frames"));
    EXPECT_EQ(bench.answer(readD100), zerosOfD100);
}

TEST(Session, NeededEnquiryOpensTheSessionUntilThePowerGoes)
{
    Settings settings;
    settings.enquiry = EnquiryMode::Needed;
    Bench bench(settings);
    EXPECT_EQ(bench.answer(readD100), "");
    EXPECT_EQ(bench.answer("\x05"), "\x06");
    EXPECT_EQ(bench.answer(readD100), zerosOfD100);
    bench.plc.powerCycle(0, bench.nowUs);
    EXPECT_EQ(bench.answer(readD100), "");
    Session second(bench.plc, "second");
    second.receive("\x05", bench.nowUs);
    EXPECT_EQ(bench.answer(readD100), "") << "another link's ENQ is not this one's";
    EXPECT_EQ(bench.plc.statistics().ungreetedFrames, 3);
}

TEST(Session, IgnoredEnquiryStillResetsTheReceiver)
{
    Settings settings;
    settings.enquiry = EnquiryMode::Ignored;
    Bench bench(settings);
    EXPECT_EQ(bench.answer(readD100.left(4) + "\x05" + readD100), zerosOfD100);
}

TEST(Session, NakFaultLeavesAWriteUndoneAndSilenceLosesItsReplyAlone)
{
    Settings settings = withFaults("nak@1,silence@3");
    settings.onError = OnError::Silence;  // of bad frames, which these are not
    Bench bench(settings);
    EXPECT_EQ(bench.answer(writeD100), "\x15");
    EXPECT_EQ(bench.answer(readD100), zerosOfD100);
    EXPECT_EQ(bench.answer(writeD100), "");
    EXPECT_EQ(bench.answer(readD100), valueOfD100);
}

TEST(Session, DelayedReplyComesWhenTheNextOneIsAwaited)
{
    Bench bench(withFaults("delay:1500@1"));
    bench.session.receive(writeD100, 0);
    EXPECT_EQ(bench.session.takeDue(1499999), "");
    bench.session.receive(readD100, 1000000);
    EXPECT_EQ(bench.session.nextDueUs(), 1500000);
    EXPECT_EQ(bench.session.takeDue(1500000), "\x06" + valueOfD100);
}

TEST(Session, LinkDropTakesTheRequestWithIt)
{
    Bench bench(withFaults("link-drop:250@1"));
    EXPECT_EQ(bench.answer(writeD100), "");
    EXPECT_EQ(bench.session.takeLinkDrop(), std::optional<int>(250));
    EXPECT_EQ(bench.session.takeLinkDrop(), std::nullopt);
    EXPECT_EQ(bench.answer(readD100), zerosOfD100);
}

TEST(Session, PowerCycleForgetsTheMemoryAndIsSilentForItsTime)
{
    Bench bench(withFaults("power-cycle:300@2"));
    EXPECT_EQ(bench.answer(writeD100), "\x06");
    EXPECT_EQ(bench.answer(readD100), "");
    bench.nowUs += 299999;
    EXPECT_EQ(bench.answer(readD100), "");
    bench.nowUs += 1;
    EXPECT_EQ(bench.answer(readD100), zerosOfD100);
    EXPECT_EQ(bench.plc.statistics().powerCycles, 1);
    EXPECT_EQ(bench.plc.statistics().ignoredCharacters, readD100.size());
}

TEST(Session, PowerCycleForgetsTheFrameThatHadBegun)
{
    Bench bench;
    EXPECT_EQ(bench.answer(readD100.left(4)), "");
    bench.plc.powerCycle(0, bench.nowUs);
    EXPECT_EQ(bench.answer(readD100.mid(4)), "");
    EXPECT_EQ(bench.answer(readD100), zerosOfD100);
}

TEST(Session, PowerCycleRestoresTheImageAndStartsTheProgramAnew)
{
    Bench bench({}, std::make_unique<SampleProgram>());
    PlcMemory memory;
    memory.write(0x10C8, fromHex("12345678"));
    bench.plc.powerOnWith(memory, 0);
    bench.plc.memory().setByte(0x10C8, 0xFF);
    bench.plc.advance(7000000);
    EXPECT_EQ(bench.plc.memory().value(0x1000, 2), 7U);
    bench.plc.powerCycle(500, 7000000);
    EXPECT_EQ(bench.plc.memory().value(0x1000, 2), 0U);
    bench.plc.advance(7400000);
    bench.plc.advance(9500000);
    EXPECT_EQ(bench.plc.memory().value(0x1000, 2), 2U);
    bench.nowUs = 9500000;
    EXPECT_EQ(bench.answer(readD100), valueOfD100);
}

// M8000 to M8015, and D8000 to D8002.
constexpr qint64 msUs = 1000;
const QByteArray readRelays = frame("001E002", "6B");
const QByteArray readWords = frame("00E0006", "6E");

TEST(Session, SpecialRegistersShowARunningPlc)
{
    Settings settings;
    settings.model = &findModel("fx1n");
    settings.startedAt = QDateTime({1999, 12, 31}, {23, 58, 0});
    Bench bench(settings);
    const struct
    {
        qint64 ms;
        const char* bytes;  // M8000 to M8015
        const char* what;
    } rows[] = {
        {0, "0500", "M8000 on, M8001 off, the first scan"},
        {1, "0900", "the first scan is over"},
        {5, "0908", "10 ms"},
        {10, "0900", "10 ms"},
        {55, "0918", "10 ms and 100 ms"},
        {505, "0928", "10 ms and 1 s"},
        {30000, "0940", "1 min"},
        {60000, "0900", "1 min"},
    };
    for (const auto& row : rows) {
        bench.session.receive(readRelays, row.ms * msUs);
        const QByteArray reply = bench.session.takeDue(row.ms * msUs);
        EXPECT_EQ(QByteArray::fromHex(reply.mid(1, 4)), fromHex(row.bytes))
            << row.what << " after " << row.ms << " ms";
    }
    bench.nowUs = 60000 * msUs;
    EXPECT_EQ(bench.answer(frame("00E1A0E", "8F")), frame("00003B0017001F000C0063000500", "98"))
        << "31 December 1999, 23:59:00, a Friday";
    EXPECT_EQ(bench.answer(readWords), frame("C80062660800", "7A")) << "200, 26210, 8";
}

TEST(Session, ClockRelaysBeginWithThePower)
{
    Settings settings;
    settings.model = &findModel("fx1s");
    Bench bench(settings);
    bench.plc.powerCycle(300, 7000 * msUs);
    bench.plc.refresh(7799 * msUs);
    EXPECT_FALSE(bench.plc.memory().bit(0x01E1, 5)) << "M8013, a second";
    bench.plc.refresh(7800 * msUs);
    EXPECT_TRUE(bench.plc.memory().bit(0x01E1, 5));
    EXPECT_EQ(bench.plc.memory().value(0x0E1A, 2), 0U) << "D8013: its clock was not set";
}

TEST(Session, SwitchRunStopTurnsM8000AndEndsTheProgram)
{
    Settings settings;
    settings.model = &findModel("fx1s");
    Bench bench(settings, std::make_unique<SampleProgram>());
    const auto wordAt = [&bench](int address) { return bench.plc.memory().value(address, 2); };
    bench.plc.advance(7000 * msUs);
    EXPECT_EQ(wordAt(0x1000), 7U);
    bench.plc.memory().setByte(0x00A1, 0xFF);
    bench.plc.memory().setByte(0x00BF, 0xFF);
    bench.plc.setRunning(false, 7000 * msUs);
    EXPECT_EQ(bench.plc.memory().byte(0x01E0), 0x0A) << "M8001 and M8003";
    EXPECT_EQ(bench.plc.memory().value(0x00A0, 4), 0U) << "outputs are off";
    EXPECT_EQ(bench.plc.memory().byte(0x00BF), 0U) << "to the last";
    bench.plc.advance(9000 * msUs);
    EXPECT_EQ(wordAt(0x1000), 7U);
    bench.plc.powerCycle(0, 9000 * msUs);
    bench.plc.advance(9500 * msUs);
    EXPECT_EQ(bench.plc.memory().byte(0x01E0), 0x0A) << "the switch stays as it is";
    bench.plc.setRunning(true, 10000 * msUs);
    EXPECT_EQ(bench.plc.memory().byte(0x01E0), 0x05);
    bench.plc.advance(12000 * msUs);
    EXPECT_EQ(wordAt(0x1000), 2U) << "a run starts the program anew";
    EXPECT_EQ(wordAt(0x0E02), 22210U);
}

TEST(Session, ModelsHaveTheirMemory)
{
    const struct
    {
        const char* model;
        const char* device;
        bool exists;
    } rows[] = {
        {"fx1s", "D255", true},    {"fx1s", "D256", false},    {"fx1s", "M511", true},
        {"fx1s", "M512", false},   {"fx1s", "X17", true},      {"fx1s", "X20", false},
        {"fx1s", "32CV235", true}, {"fx1s", "32CV234", false}, {"fx1s", "T64", false},
        {"fx1s", "D8255", true},   {"fx1n", "D7999", true},    {"fx1n", "X177", true},
        {"fx1n", "X200", false},   {"fx1n", "CV199", true},    {"fx1n", "M2048", false},
        {"any", "M3071", true},    {"any", "D7999", true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(memoryOf(findModel(row.model)).has(device(row.device).address(), 1), row.exists)
            << row.model << ' ' << row.device;
}

TEST(Session, NewPlanCountsItsExchangesFromOne)
{
    Bench bench;
    EXPECT_EQ(bench.answer(readD100), zerosOfD100);
    bench.plc.setFaults(parseFaults("silence@1"));
    EXPECT_EQ(bench.answer(readD100 + readD100), zerosOfD100);
}

TEST(Session, AtTenThousandBaudEachCharacterTakesAMillisecond)
{
    Settings settings;
    settings.timing.baud = 10000;
    Bench bench(settings);
    bench.session.receive(readD100, 0);  // in after 11 ms
    EXPECT_EQ(bench.session.nextDueUs(), 12000);
    EXPECT_EQ(bench.session.takeDue(12000), "\x02");
    EXPECT_EQ(bench.session.takeDue(22999), zerosOfD100.mid(1, 10));
    EXPECT_EQ(bench.session.takeDue(23000), "3");
}

TEST(Session, PhysicalLinksAreNotPacedTwiceAndAnswerAtTheEndOfAScan)
{
    Settings settings;
    settings.timing = {9600, 10};
    Bench bench(settings);
    bench.session.setTiming({0, 10});
    bench.session.receive(readD100, 15000);
    EXPECT_EQ(bench.session.nextDueUs(), 20000);
    EXPECT_EQ(bench.session.takeDue(20000), zerosOfD100);
}

TEST(Session, SessionsShareTheMemory)
{
    Bench bench;
    Session second(bench.plc, "second");
    second.receive(writeD100, 0);
    EXPECT_EQ(bench.answer(readD100), valueOfD100);
    EXPECT_EQ(bench.plc.statistics().clients, 2);
}

TEST(Session, EverythingIsCounted)
{
    Bench bench(withFaults("wrong-sum@1"));
    bench.answer("junk\x05" + readD100 + writeD100 + damagedRead + frame("70000", "FA"));
    const Statistics& counted = bench.plc.statistics();
    EXPECT_EQ(counted.exchanges, 4);
    EXPECT_EQ(counted.reads, 1);
    EXPECT_EQ(counted.writes, 1);
    EXPECT_EQ(counted.forces, 1);
    EXPECT_EQ(counted.enquiries, 1);
    EXPECT_EQ(counted.junkCharacters, 4);
    EXPECT_EQ(counted.charactersIn, 4 + 1 + 11 + 19 + 11 + 9);
    EXPECT_EQ(counted.charactersOut, 1 + 12 + 1 + 1 + 1);
    EXPECT_TRUE(counted.text().contains("refused: wrong checksum       1\n")) << counted.text();
    EXPECT_TRUE(counted.text().contains("fault: wrong-sum              1\n")) << counted.text();
    EXPECT_FALSE(counted.text().contains("silence"));
    Statistics first;
    first.faults[0] = 1;
    EXPECT_TRUE(first.text().contains("fault: power-cycle")) << first.text();
}

TEST(Session, TraceTellsRequestsFaultsAndReplies)
{
    Bench bench(withFaults("wrong-sum@1"));
    QByteArrayList told;
    bench.plc.setTrace([&told](const TraceEntry& entry) { told.append(entry.text); });
    bench.answer("x" + readD100);
    EXPECT_EQ(told, (QByteArrayList{"junk, ignored", "read 4 bytes at 0x10C8", "fault: wrong-sum",
                                    "wrong-sum"}));
}

TEST(Session, TraceTellsOfAFrameThatIsTooLong)
{
    Bench bench;
    QByteArrayList told;
    bench.plc.setTrace([&told](const TraceEntry& entry) { told.append(entry.text); });
    bench.session.receive('\x02' + QByteArray(5000, '0'), bench.nowUs);
    EXPECT_EQ(told.value(0), "frame too long, dropped");
    EXPECT_EQ(bench.plc.statistics().overlongFrames, 1);
}

TEST(Simulator, KeepsASwitchedInputWhateverTheProgramSets)
{
    Bench bench(Settings(), std::make_unique<SampleProgram>());
    bench.plc.switchInput(1, true);
    for (const qint64 nowUs : {0, 500000, 2000000}) {
        bench.plc.advance(nowUs);
        EXPECT_TRUE(bench.plc.memory().bit(0x0080, 1)) << nowUs;
    }
    bench.plc.releaseInput(1);
    bench.plc.advance(2000000);
    EXPECT_FALSE(bench.plc.memory().bit(0x0080, 1)) << "the program sets it again";
}

// From its power-on on, and not only at the next second.
TEST(Simulator, ShowsTheTimeAndTheScanInItsSpecialRegisters)
{
    Settings settings;
    settings.model = &findModel("any");
    settings.timing.scanMs = 20;
    settings.startedAt = QDateTime(QDate(2026, 1, 31), QTime(23, 59, 58));
    Bench bench(settings);
    const auto word = [&bench](const char* name) {
        return bench.plc.memory().value(parsePlace(name).address, 2);
    };
    for (const char* const scan : {"D8010", "D8011", "D8012"})
        EXPECT_EQ(word(scan), 200U) << scan;
    EXPECT_EQ(word("D8013"), 58U);
    const auto isFirstScan = [&bench] { return bench.plc.memory().bit(0x01E0, 2); };
    bench.plc.advance(19999);
    EXPECT_TRUE(isFirstScan());
    bench.plc.advance(20000);
    EXPECT_FALSE(isFirstScan());
    bench.plc.advance(1999999);
    EXPECT_EQ(word("D8013"), 59U);
    EXPECT_EQ(word("D8017"), 1U);
    bench.plc.advance(2000000);
    EXPECT_EQ(word("D8013"), 0U);
    EXPECT_EQ(word("D8016"), 1U);
    EXPECT_EQ(word("D8017"), 2U);
}

TEST(Session, HostThatTakesNothingLosesWhatIsTooMuch)
{
    Bench bench(withFaults("delay:600000@1"));
    for (int request = 0; request < 1010; ++request)
        bench.session.receive(readD100, 0);
    EXPECT_EQ(bench.plc.statistics().charactersLost, 10 * 12);
}

// Whatever came before, an ENQ and a frame behind it are answered as if nothing had.
TEST(Session, NoGarbageOutlivesAnEnquiry)
{
    const QByteArray likely = fromHex("0203050615") + "0178" + "0123456789ABCDEF";
    Bench bench;
    Dice dice(1, 1);
    for (int round = 0; round < 2000; ++round) {
        QByteArray garbage;
        for (int length = dice.below(60); length > 0; --length) {
            const bool anything = dice.below(4) == 0;
            garbage +=
                anything ? static_cast<char>(dice.below(256)) : likely[dice.below(likely.size())];
        }
        bench.answer(garbage);
        bench.plc.memory().setImage(QByteArray());
        ASSERT_EQ(bench.answer("\x05" + readD100), "\x06" + zerosOfD100) << garbage;
    }
}

TEST(TraceText, ShowsHexAndReadableSideBySide)
{
    EXPECT_EQ(
        traceLine({12345678, "/dev/pts/5", TraceEntry::Direction::FromHost,
                   fromHex("02373038303503"
                           "3037"),
                   "force on"}),
        "   12.345678 /dev/pts/5 > 02 37 30 38 30 35 03 30 37 | <STX>70805<ETX>07 | force on");
    EXPECT_EQ(traceLine({5, "pty", TraceEntry::Direction::ToHost, "\x06", ""}),
              "    0.000005 pty < 06 | <ACK>");
    EXPECT_EQ(traceLine({1000000, "pty", TraceEntry::Direction::Note, "", "fault: silence"}),
              "    1.000000 pty * fault: silence");
}

TEST(TraceText, NamesEveryCharacterThatCannotBeRead)
{
    EXPECT_EQ(readable(fromHex("0203050615")), "<STX><ETX><ENQ><ACK><NAK>");
    EXPECT_EQ(readable(fromHex("417E207F0AFF00")), "A~ <7F><0A><FF><00>");
}
