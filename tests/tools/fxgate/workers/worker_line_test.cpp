// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a worker says: each kind of line, and lines that a broken worker may print.

#include "tests/tools/support/failure_of.h"
#include "tools/fxgate/growing_pause.h"
#include "tools/fxgate/workers/line_feed.h"
#include "tools/fxgate/workers/worker_line.h"

#include <gtest/gtest.h>

using namespace fxgate;

namespace {

template <typename Line>
Line parsed(const char* text)
{
    return std::get<Line>(parseWorkerLine(text));
}

}  // namespace

TEST(WorkerLine, TellsTheTagsOfALink)
{
    const auto hello = parsed<HelloLine>(
        R"({"event":"hello","protocol":1,"version":"1.2.3","link":"sim:","station":1,"tags":[
            {"name":"boiler.flow","address":"D10","kind":"real","unit":"l/min","description":"In",
             "writable":true,"min":0,"max":100,"deadband":0.5,"periodMs":500},
            {"name":"run","kind":"bit"}]})");
    EXPECT_EQ(hello.version, "1.2.3");
    ASSERT_EQ(hello.tags.size(), 2);
    const ServedTag& flow = hello.tags[0];
    EXPECT_EQ(flow.name, "boiler.flow");
    EXPECT_EQ(flow.address, "D10");
    EXPECT_EQ(flow.kind, ValueKind::Real);
    EXPECT_EQ(flow.unit, "l/min");
    EXPECT_EQ(flow.description, "In");
    EXPECT_TRUE(flow.isWritable);
    EXPECT_EQ(flow.min, 0.0);
    EXPECT_EQ(flow.max, 100.0);
    EXPECT_EQ(flow.deadband, 0.5);
    const ServedTag& run = hello.tags[1];
    EXPECT_EQ(run.kind, ValueKind::Bit);
    EXPECT_FALSE(run.isWritable);
    EXPECT_FALSE(run.min || run.max);
    EXPECT_EQ(run.deadband, 0);
}

TEST(WorkerLine, TellsWhetherThePlcAnswers)
{
    EXPECT_TRUE(parsed<StateLine>(R"({"event":"state","link":"up"})").isUp);
    const auto down = parsed<StateLine>(R"({"event":"state","link":"down","reason":"gone"})");
    EXPECT_FALSE(down.isUp);
    EXPECT_EQ(down.reason, "gone");
    EXPECT_EQ(parsed<StateLine>(R"({"event":"state","link":"opening"})").reason, "link opening");
}

TEST(WorkerLine, TellsValuesWithTheirQuality)
{
    const auto values = parsed<ValuesLine>(
        R"({"event":"values","time":1795340000123,"good":{"a":12.5,"b":true,"c":"x"},
            "stale":{"d":"not read for 3 periods"},"bad":{"e":"refused"}})");
    EXPECT_EQ(values.timeMs, 1795340000123);
    EXPECT_EQ(values.good, (QMap<QString, QJsonValue>{{"a", 12.5}, {"b", true}, {"c", "x"}}));
    EXPECT_EQ(values.stale, (QMap<QString, QString>{{"d", "not read for 3 periods"}}));
    EXPECT_EQ(values.bad, (QMap<QString, QString>{{"e", "refused"}}));
}

TEST(WorkerLine, TellsHowTheLineDoes)
{
    const auto alive = parsed<AliveLine>(
        R"({"event":"alive","cycleMs":48.2,"exchanges":1234,"good":1230,"late":["a","b"],
            "load":"153 %","errors":{"silence":3}})");
    EXPECT_EQ(alive.cycleMs, 48.2);
    EXPECT_EQ(alive.exchanges, 1234);
    EXPECT_EQ(alive.good, 1230);
    EXPECT_EQ(alive.late, QStringList({"a", "b"}));
    EXPECT_EQ(alive.load, "153 %");
    EXPECT_EQ(alive.errors, (QMap<QString, qint64>{{"silence", 3}}));
}

TEST(WorkerLine, TellsWhatBecameOfAWrite)
{
    const auto written = parsed<WrittenLine>(
        R"({"event":"written","id":"17","tag":"a","outcome":"failed","old":70,"new":72.5,
            "reason":"no reply"})");
    EXPECT_EQ(written.id, "17");
    EXPECT_EQ(written.result.outcome, WriteResult::Outcome::Failed);
    EXPECT_EQ(written.result.oldValue, QJsonValue(70));
    EXPECT_EQ(written.result.newValue, QJsonValue(72.5));
    EXPECT_EQ(written.result.reason, "no reply");
    EXPECT_TRUE(parsed<WrittenLine>(R"({"event":"written","id":"1","outcome":"unknown"})")
                    .result.oldValue.isNull());
    EXPECT_EQ(parsed<MistakeLine>(R"({"event":"mistake","line":3,"text":"no JSON"})").text,
              "no JSON");
}

TEST(WorkerLine, IsRefusedWhereItIsNonsense)
{
    struct Row
    {
        const char* line;
        const char* says;
    };
    const Row rows[] = {
        {"", "'' is not a JSON object"},
        {"hello", "'hello' is not a JSON object"},
        {"[1]", "'[1]' is not a JSON object"},
        {"\x1b[2J\xff", "'?[2J�' is not a JSON object"},
        {"{}", "unknown event ''"},
        {R"({"event":5})", "event is not a text"},
        {R"({"event":"goodbye"})", "unknown event 'goodbye'"},
        {R"({"event":"hello","protocol":2})",
         "it does not speak protocol 1; fxhost and fxgate must have the same version"},
        {R"({"event":"hello","protocol":1,"tags":{}})", "tags is not a list"},
        {R"({"event":"hello","protocol":1,"tags":[5]})", "'' cannot be the name of a tag"},
        {R"({"event":"hello","protocol":1,"tags":[{"name":"a/b"}]})",
         "'a/b' cannot be the name of a tag"},
        {R"({"event":"hello","protocol":1,"tags":[{"name":"a+"}]})",
         "'a+' cannot be the name of a tag"},
        {R"({"event":"hello","protocol":1,"tags":[{"name":"a\u0000"}]})",
         "'a?' cannot be the name of a tag"},
        {R"({"event":"hello","protocol":1,"tags":[{"name":"a","kind":"int"}]})",
         "kind is not bit or integer or real or text"},
        {R"({"event":"hello","protocol":1,"tags":[{"name":"a","kind":"bit","min":"0"}]})",
         "min is not a number"},
        {R"({"event":"hello","protocol":1,"tags":[{"name":"a","kind":"bit"},
                                                  {"name":"a","kind":"bit"}]})",
         "two tags have the name 'a'"},
        {R"({"event":"state","link":"high"})", "link is not down or opening or up"},
        {R"({"event":"values","good":{}})", "time is not a whole number"},
        {R"({"event":"values","time":-1})", "time is not a whole number"},
        {R"({"event":"values","time":1e300})", "time is not a whole number"},
        {R"({"event":"values","time":0.5})", "time is not a whole number"},
        {R"({"event":"values","time":1,"good":[]})", "good is not an object"},
        {R"({"event":"values","time":1,"good":{"a":{}}})",
         "the value of 'a' is not a bit, number or text"},
        {R"({"event":"values","time":1,"bad":5})", "bad is not an object"},
        {R"({"event":"alive","exchanges":1,"good":"x"})", "good is not a whole number"},
        {R"({"event":"alive","exchanges":1,"good":1,"errors":{"a":1.5}})",
         "errors is not a whole number"},
        {R"({"event":"written","id":5,"outcome":"done"})", "id is not a text"},
        {R"({"event":"written","id":"5","outcome":"fine"})",
         "outcome is not done or failed or refused or unknown"},
    };
    for (const auto& [line, says] : rows) {
        EXPECT_EQ(tool_tests::failureOf(fxtools::ExitCode::Damaged,
                                        [line = line] { parseWorkerLine(line); }),
                  says)
            << line;
    }
    EXPECT_EQ(tool_tests::failureOf(fxtools::ExitCode::Damaged,
                                    [] { parseWorkerLine(QByteArray(100000, '[')); })
                  .size(),
              std::string("'' is not a JSON object").size() + 59 + std::string("…").size());
}

TEST(WorkerLine, IsWrittenAsTheWorkerReadsIt)
{
    EXPECT_EQ(writeLine("17", "a", 72.5),
              "{\"write\":{\"id\":\"17\",\"tag\":\"a\",\"value\":72.5}}\n");
    EXPECT_EQ(writeLine("17", "a", "x\ny"),
              "{\"write\":{\"id\":\"17\",\"tag\":\"a\",\"value\":\"x\\ny\"}}\n");
    EXPECT_EQ(refreshLine(), "{\"refresh\":{}}\n");
    EXPECT_EQ(stopLine(), "{\"stop\":{}}\n");
}

TEST(LineFeed, CutsLinesWhereverTheBytesAreCut)
{
    LineFeed feed;
    EXPECT_EQ(feed.take("on", 0), QList<QByteArray>());
    EXPECT_EQ(feed.take("e\ntwo\nth", 0), QList<QByteArray>({"one", "two"}));
    EXPECT_EQ(feed.take("ree\n", 0), QList<QByteArray>({"three"}));
    EXPECT_EQ(feed.mistake(), "");
}

TEST(LineFeed, FindsAFloodOut)
{
    LineFeed lines;
    lines.take(QByteArray(LineFeed::mostLinesPerSecond, '\n'), 999);
    EXPECT_EQ(lines.mistake(), "");
    EXPECT_TRUE(lines.take("\n", 999).isEmpty());
    EXPECT_EQ(lines.mistake(), "more than 2000 lines in a second");

    LineFeed bytes;
    bytes.take(QByteArray(LineFeed::mostBytesPerSecond - 1, 'x') + '\n', 0);
    EXPECT_EQ(bytes.mistake(), "");
    bytes.take("x", 0);
    EXPECT_EQ(bytes.mistake(), "more than 8 MiB in a second");

    LineFeed endless;
    endless.take(QByteArray(LineFeed::longestLine, 'x'), 0);
    EXPECT_EQ(endless.mistake(), "");
    endless.take("x", 1000);
    EXPECT_EQ(endless.mistake(), "a line longer than 8 MiB");
}

TEST(LineFeed, CountsEachSecondAnew)
{
    LineFeed feed;
    for (int second = 0; second < 3; ++second)
        feed.take(QByteArray(LineFeed::mostLinesPerSecond, '\n'), 1000 * second);
    EXPECT_EQ(feed.mistake(), "");
}

TEST(GrowingPause, GrowsUpToAMinute)
{
    GrowingPause pause(60000);
    for (const qint64 pauseMs : {1000, 2000, 4000, 8000, 16000, 32000, 60000, 60000})
        EXPECT_EQ(pause.next(GrowingPause::goodWorkMs - 1, 0), pauseMs);
}

TEST(GrowingPause, BeginsAnewAfterAMinuteOfGoodWork)
{
    GrowingPause pause(60000);
    pause.next(0, 0);
    pause.next(0, 0);
    EXPECT_EQ(pause.next(GrowingPause::goodWorkMs, 0), 1000);
    EXPECT_EQ(pause.next(0, 1), 1500);  // 2000 less a quarter by chance
}
