// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Scripts: what steps do and when, and what is said of a script that is wrong.

#include "tests/tools/fxsim/error_text.h"
#include "tests/tools/fxsim/printing.h"
#include "tools/fxsim/plc/script_program.h"

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

struct ScriptRun
{
    explicit ScriptRun(const QByteArray& steps)
        : program(parseScript("{\"steps\":[" + steps + "]}"))
    {
        program->start(memory);
    }

    PlcMemory& at(qint64 elapsedMs)
    {
        program->advance(memory, elapsedMs);
        return memory;
    }

    std::unique_ptr<Program> program;
    PlcMemory memory;
};

QString errorOf(const QByteArray& json)
{
    return errorText([json] { parseScript(json); });
}

QString errorOfStep(const QByteArray& step)
{
    return errorOf("{\"steps\":[{\"at\":0,\"set\":\"0\",\"value\":0}," + step + "]}");
}

}  // namespace

struct ScriptCase
{
    const char* name;
    const char* steps;
    int address;
    QVector<QPair<qint64, const char*>> moments;  // milliseconds and the bytes from `address` on
};

class ScriptSteps : public testing::TestWithParam<ScriptCase>
{};

TEST_P(ScriptSteps, DoWhatTheySayAtEachMoment)
{
    ScriptRun run(GetParam().steps);
    for (const auto& moment : GetParam().moments) {
        const QByteArray bytes = fromHex(moment.second);
        EXPECT_EQ(run.at(moment.first).read(GetParam().address, bytes.size()), bytes)
            << "after " << moment.first << " ms";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Of, ScriptSteps,
    testing::Values(ScriptCase{"SetOnce",
                               R"({"at": 1000, "set": "0x1000", "value": 4660, "bytes": 2})",
                               0x1000,
                               {{999, "0000"}, {1000, "3412"}}},
                    ScriptCase{"SetAtPowerOn",
                               R"({"at": 0, "set": "0x1000", "value": -2, "bytes": 4})",
                               0x1000,
                               {{0, "FEFFFFFF"}}},
                    ScriptCase{"AddMakesUpForMissedOnes",
                               R"({"every": 500, "add": "0x1002", "value": 3})",
                               0x1002,
                               {{499, "0000"}, {500, "0300"}, {2600, "0F00"}}},
                    ScriptCase{"SumStartsAgainPastItsEnd",
                               R"({"every": 1, "add": "0x1002", "value": 1, "from": 5, "to": 7})",
                               0x1002,
                               {{1, "0500"}, {3, "0700"}, {4, "0500"}}},
                    ScriptCase{"SumWithoutEndWrapsInItsBytes",
                               R"({"every": 1, "add": "0x1002", "value": 255, "bytes": 1})",
                               0x1002,
                               {{2, "FE00"}}},
                    ScriptCase{"ToggledBit",
                               R"({"every": 1000, "after": 0, "toggle": "0x0080.3"})",
                               0x0080,
                               {{0, "08"}, {1000, "00"}, {2000, "08"}}},
                    ScriptCase{"SetBit",
                               R"({"at": 0, "set": "0x0100.7", "value": 1},
                      {"at": 5, "set": "0x0100.7", "value": 0})",
                               0x0100,
                               {{0, "80"}, {5, "00"}}},
                    ScriptCase{"Copy",
                               R"({"at": 0, "set": "0x1000", "value": 305419896, "bytes": 4},
                      {"every": 10, "copy": "0x1000", "to": "0x1100", "bytes": 3})",
                               0x1100,
                               {{10, "78563400"}}},
                    ScriptCase{"StepsOfOneMomentInTheirOrder",
                               R"({"every": 10, "add": "0x1000", "value": 1},
                      {"every": 10, "copy": "0x1000", "to": "0x1100"})",
                               0x1100,
                               {{10, "0100"}, {35, "0300"}}},
                    ScriptCase{"LongSleepNotMadeUpForWithoutEnd",
                               R"({"every": 1, "add": "0x1000", "value": 1, "bytes": 4})",
                               0x1000,
                               {{500000000, "A0860100"}, {500000001, "A1860100"}}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Script, StepOfOneMomentIsDoneOnce)
{
    ScriptRun run(R"({"at": 1000, "set": "0x1000", "value": 1})");
    run.at(1000).setByte(0x1000, 0);
    EXPECT_EQ(run.at(5000).byte(0x1000), 0);
}

TEST(Script, StartsAnewWithThePower)
{
    ScriptRun run(R"({"at": 10, "set": "0x1000", "value": 1})");
    run.at(10);
    PlcMemory fresh;
    run.program->start(fresh);
    run.program->advance(fresh, 9);
    EXPECT_EQ(fresh.byte(0x1000), 0);
    run.program->advance(fresh, 10);
    EXPECT_EQ(fresh.byte(0x1000), 1);
}

TEST(Script, CommentsMayStandAnywhere)
{
    EXPECT_EQ(errorOf(R"({"comment": "a", "steps": [{"comment": "b", "at": 0, "toggle": "0.0"}]})"),
              "no error");
}

TEST(Script, ErrorNamesTheLine)
{
    EXPECT_EQ(errorOf("{\n\"steps\": [\n{]}"), "line 3: unterminated object");
    EXPECT_EQ(errorOf("[]"), "expected { \"steps\": [ ... ] }");
    EXPECT_EQ(errorOf(R"({"steps": [], "stepps": []})"), "expected { \"steps\": [ ... ] }");
}

TEST(Script, ErrorNamesTheStep)
{
    const char* const oneAction =
        "step 2: expected exactly one of \"set\", \"add\", \"toggle\" and \"copy\"";
    const char* const oneTime = "step 2: expected either \"at\" or \"every\"";
    const char* const place =
        "step 2: \"set\" must be a byte address such as \"0x1000\", or a bit such "
        "as \"0x0100.3\"";
    const struct
    {
        const char* step;
        const char* error;
    } rows[] = {
        {"7", oneAction},
        {R"({"at": 0})", oneAction},
        {R"({"at": 0, "toggle": "0.0", "add": "0"})", oneAction},
        {R"({"toggle": "0.0"})", oneTime},
        {R"({"at": 1, "every": 1, "toggle": "0.0"})", oneTime},
        {R"({"every": 0, "toggle": "0.0"})",
         "step 2: \"every\" must be a whole number from 1 to 604800000"},
        {R"({"at": 0.5, "toggle": "0.0"})",
         "step 2: \"at\" must be a whole number from 0 to 604800000"},
        {R"({"at": 0, "toggle": "0x80"})", "step 2: \"toggle\" must be a bit such as \"0x0080.3\""},
        {R"({"at": 0, "add": "0x80.1"})", "step 2: \"add\" must be a byte address, not a bit"},
        {R"({"at": 0, "set": "0x10000", "value": 1})", place},
        {R"({"at": 0, "set": "0x80.8", "value": 1})", place},
        {R"({"at": 0, "set": "0x1000"})",
         "step 2: \"value\" must be a whole number from -2147483648 to 4294967295"},
        {R"({"at": 0, "set": "0x1000", "value": 1, "bytes": 3})",
         "step 2: \"bytes\" must be 1, 2 or 4"},
        {R"({"at": 0, "set": "0xFFFF", "value": 1})",
         "step 2: the value extends beyond address 0xFFFF"},
        {R"({"at": 0, "set": "0x1000", "value": 1, "to": 3})",
         "step 2: \"to\" is not expected here"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(errorOfStep(row.step), row.error);
}

TEST(Script, FileThatIsMissingIsNamed)
{
    EXPECT_EQ(errorText([] { loadScript("/nonexistent/plant.json"); }),
              "/nonexistent/plant.json: No such file or directory");
}
