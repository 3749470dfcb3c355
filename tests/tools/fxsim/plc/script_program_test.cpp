// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Scripts: what steps do and when, and what is said of a script that is wrong.

#include "tests/tools/fxsim/printing.h"
#include "tools/fxsim/plc/script_program.h"

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

struct ScriptRun
{
    explicit ScriptRun(const QByteArray& steps) : script(parseScript("{\"steps\":[" + steps + "]}"))
    {
        EXPECT_EQ(script.error, QString());
        script.program->start(memory);
    }

    PlcMemory& at(qint64 elapsedMs)
    {
        script.program->advance(memory, elapsedMs);
        return memory;
    }

    LoadedScript script;
    PlcMemory memory;
};

QString errorOfStep(const QByteArray& step)
{
    return parseScript("{\"steps\":[{\"at\":0,\"set\":\"0\",\"value\":0}," + step + "]}").error;
}

}  // namespace

TEST(Script, SetsOnceAtItsTime)
{
    ScriptRun run(R"({"at": 1000, "set": "0x1000", "value": 4660, "bytes": 2})");
    EXPECT_EQ(run.at(999).value(0x1000, 2), 0U);
    EXPECT_EQ(run.at(1000).value(0x1000, 2), 0x1234U);
    run.memory.setByte(0x1000, 0);
    EXPECT_EQ(run.at(5000).byte(0x1000), 0);
}

TEST(Script, TimeZeroIsPowerOn)
{
    ScriptRun run(R"({"at": 0, "set": "0x1000", "value": -2, "bytes": 4})");
    EXPECT_EQ(run.memory.value(0x1000, 4), 0xFFFFFFFEU);
}

TEST(Script, AddsAgainAndAgain)
{
    ScriptRun run(R"({"every": 500, "add": "0x1002", "value": 3})");
    EXPECT_EQ(run.at(499).value(0x1002, 2), 0U);
    EXPECT_EQ(run.at(500).value(0x1002, 2), 3U);
    EXPECT_EQ(run.at(2600).value(0x1002, 2), 15U) << "the ones missed are made up for";
}

TEST(Script, SumStartsAgainPastItsEnd)
{
    ScriptRun run(R"({"every": 1, "add": "0x1002", "value": 1, "from": 5, "to": 7})");
    EXPECT_EQ(run.at(1).value(0x1002, 2), 5U);
    EXPECT_EQ(run.at(3).value(0x1002, 2), 7U);
    EXPECT_EQ(run.at(4).value(0x1002, 2), 5U);
}

TEST(Script, SumWithoutEndWrapsInItsBytes)
{
    ScriptRun run(R"({"every": 1, "add": "0x1002", "value": 255, "bytes": 1})");
    EXPECT_EQ(run.at(2).value(0x1002, 2), 0x00FEU);
}

TEST(Script, TogglesABit)
{
    ScriptRun run(R"({"every": 1000, "after": 0, "toggle": "0x0080.3"})");
    EXPECT_EQ(run.memory.byte(0x0080), 0x08);
    EXPECT_EQ(run.at(1000).byte(0x0080), 0x00);
    EXPECT_EQ(run.at(2000).byte(0x0080), 0x08);
}

TEST(Script, SetsABit)
{
    ScriptRun run(
        R"({"at": 0, "set": "0x0100.7", "value": 1}, {"at": 5, "set": "0x0100.7", "value": 0})");
    EXPECT_EQ(run.memory.byte(0x0100), 0x80);
    EXPECT_EQ(run.at(5).byte(0x0100), 0x00);
}

TEST(Script, Copies)
{
    ScriptRun run(R"({"at": 0, "set": "0x1000", "value": 305419896, "bytes": 4},
               {"every": 10, "copy": "0x1000", "to": "0x1100", "bytes": 3})");
    EXPECT_EQ(run.at(10).read(0x1100, 4), fromHex("78563400"));
}

TEST(Script, StepsOfOneMomentRunInTheirOrder)
{
    ScriptRun run(R"({"every": 10, "add": "0x1000", "value": 1},
               {"every": 10, "copy": "0x1000", "to": "0x1100"})");
    EXPECT_EQ(run.at(10).value(0x1100, 2), 1U);
    EXPECT_EQ(run.at(35).value(0x1100, 2), 3U);
}

TEST(Script, StartsAnewWithThePower)
{
    ScriptRun run(R"({"at": 10, "set": "0x1000", "value": 1})");
    run.at(10);
    PlcMemory fresh;
    run.script.program->start(fresh);
    run.script.program->advance(fresh, 9);
    EXPECT_EQ(fresh.byte(0x1000), 0);
    run.script.program->advance(fresh, 10);
    EXPECT_EQ(fresh.byte(0x1000), 1);
}

TEST(Script, LongSleepIsNotMadeUpForWithoutEnd)
{
    ScriptRun run(R"({"every": 1, "add": "0x1000", "value": 1, "bytes": 4})");
    EXPECT_EQ(run.at(500000000).value(0x1000, 4), 100000U);
    EXPECT_EQ(run.at(500000001).value(0x1000, 4), 100001U);
}

TEST(Script, CommentsMayStandAnywhere)
{
    EXPECT_EQ(
        parseScript(R"({"comment": "a", "steps": [{"comment": "b", "at": 0, "toggle": "0.0"}]})")
            .error,
        QString());
}

TEST(Script, SaysWhatIsWrongAndWhere)
{
    EXPECT_EQ(parseScript("{\n\"steps\": [\n{]}").error, "line 3: unterminated object");
    EXPECT_EQ(parseScript("[]").error, "a script is { \"steps\": [ ... ] }");
    EXPECT_EQ(parseScript(R"({"steps": [], "stepps": []})").error,
              "a script is { \"steps\": [ ... ] }");
    EXPECT_EQ(errorOfStep(R"({"at": 0})"),
              "step 2: one of \"set\", \"add\", \"toggle\" and \"copy\" says what");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "toggle": "0.0", "add": "0"})"),
              "step 2: one of \"set\", \"add\", \"toggle\" and \"copy\" says what");
    EXPECT_EQ(errorOfStep(R"({"toggle": "0.0"})"), "step 2: one of \"at\" and \"every\" says when");
    EXPECT_EQ(errorOfStep(R"({"at": 1, "every": 1, "toggle": "0.0"})"),
              "step 2: one of \"at\" and \"every\" says when");
    EXPECT_EQ(errorOfStep(R"({"every": 0, "toggle": "0.0"})"),
              "step 2: \"every\" must be a whole number from 1 to 604800000");
    EXPECT_EQ(errorOfStep(R"({"at": 0.5, "toggle": "0.0"})"),
              "step 2: \"at\" must be a whole number from 0 to 604800000");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "toggle": "0x80.8"})"),
              "step 2: \"toggle\" must be a bit such as \"0x0080.3\"");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "set": "0x10000", "value": 1})"),
              "step 2: \"set\" must be a byte address such as \"0x1000\"");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "set": "0x1000"})"),
              "step 2: \"value\" must be a whole number from -2147483648 to 4294967295");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "set": "0x1000", "value": 1, "bytes": 3})"),
              "step 2: \"bytes\" must be 1, 2 or 4");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "set": "0xFFFF", "value": 1})"),
              "step 2: the bytes end beyond 0xFFFF");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "set": "0x1000", "value": 1, "to": 3})"),
              "step 2: \"to\" has no meaning here");
    EXPECT_EQ(errorOfStep("7"),
              "step 2: one of \"set\", \"add\", \"toggle\" and \"copy\" says what");
}

TEST(Script, FileThatIsMissingIsNamed)
{
    EXPECT_EQ(loadScript("/nonexistent/plant.json").error,
              "/nonexistent/plant.json: No such file or directory");
}
