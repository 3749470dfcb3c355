// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Scripts: what steps do and when, and what is said of a script that is wrong.

#include "tests/tools/fxsim/support.h"
#include "tools/fxsim/plc/model.h"
#include "tools/fxsim/plc/script_program.h"

#include <QSet>
#include <QTemporaryFile>

#include <gtest/gtest.h>

using namespace fxsim;

namespace {

struct ScriptRun
{
    explicit ScriptRun(const QByteArray& steps)
        : program(parseScript("{\"steps\":[" + steps + "]}", memory, 1))
    {
        program->start(memory);
    }

    PlcMemory& at(qint64 elapsedMs)
    {
        program->advance(memory, elapsedMs);
        return memory;
    }

    PlcMemory memory;
    std::unique_ptr<Program> program;
};

QString scriptError(const QByteArray& json)
{
    const PlcMemory small = memoryOf(findModel("fx1s"));
    return errorText([&] { parseScript(json, small, 1); });
}

QString errorOfStep(const QByteArray& step)
{
    return scriptError("{\"steps\":[{\"at\":0,\n\"set\":\"D0\",\"value\":0},\n" + step + "]}");
}

}  // namespace

TEST(Script, StepsDoWhatTheySayAtEachMoment)
{
    const struct
    {
        const char* steps;
        int address;
        const char* moments;  // milliseconds, and the bytes from `address` on
    } rows[] = {
        // clang-format off
        {R"({"at": 1000, "set": "0x1000", "value": 4660, "bytes": 2})",
         0x1000, "999: 0000, 1000: 3412"},
        {R"({"at": 0, "set": "0x1000", "value": -2, "bytes": 4})",
         0x1000, "0: FEFFFFFF"},  // at power-on
        {R"({"every": 500, "add": "0x1002", "value": 3})",
         0x1002, "499: 0000, 500: 0300, 2600: 0F00"},  // missed ones are made up for
        {R"({"every": 1, "add": "0x1002", "value": 1, "from": 5, "to": 7})",
         0x1002, "1: 0500, 3: 0700, 4: 0500"},  // starts again past its end
        {R"({"every": 1, "add": "0x1002", "value": 255, "bytes": 1})",
         0x1002, "2: FE00"},  // wraps in its bytes
        {R"({"every": 1000, "after": 0, "toggle": "0x0080.3"})",
         0x0080, "0: 08, 1000: 00, 2000: 08"},
        {R"({"at": 0, "set": "0x0100.7", "value": 1},
             {"at": 5, "set": "0x0100.7", "value": 0})",
         0x0100, "0: 80, 5: 00"},
        {R"({"at": 0, "set": "0x1000", "value": 305419896, "bytes": 4},
             {"every": 10, "copy": "0x1000", "to": "0x1100", "bytes": 3})",
         0x1100, "10: 78563400"},
        {R"({"at": 0, "set": "32CV200", "value": -2}, {"at": 1, "set": "D8", "value": -1},
             {"at": 2, "copy": "32CV200", "to": "32CV201", "count": 1})",
         0x0C00, "1: FEFFFFFF00000000, 2: FEFFFFFFFEFFFFFF"},  // the bytes that the devices have
        {R"({"every": 1, "add": "D0", "value": -1, "from": -2, "to": 5})",
         0x1000, "1: FFFF, 2: FEFF, 3: FEFF"},  // below zero
        {R"({"at": 0, "set": "D0", "value": 21}, {"at": 1, "copy": "D0.2", "to": "M6", "count": 4})",
         0x0100, "0: 0000, 1: 4001"},
        {R"({"at": 0, "set": "0x0100", "value": 7, "bytes": 1}, {"every": 1, "copy": "M0", "to": "M1", "count": 7})",
         0x0100, "1: 0F, 2: 1F"},  // moved over themselves
        {R"({"ramp": "D0", "from": 10, "to": -10, "over": 1000, "after": 50, "every": 10})",
         0x1000, "40: 0000, 50: 0A00, 550: 0000, 1050: F6FF, 3000: F6FF"},
        {R"({"ramp": "D0", "from": 0, "to": 100, "over": 1000, "then": "back"})",
         0x1000, "500: 3200, 1000: 6400, 1500: 3200, 2000: 0000, 2300: 1E00"},
        {R"({"ramp": "D0", "from": 0, "to": 100, "over": 1000, "then": "repeat"})",
         0x1000, "900: 5A00, 1000: 0000, 1500: 3200"},
        {R"({"at": 10, "set": "X1", "value": 1}, {"at": 20, "set": "D5", "value": -3},
             {"every": 1, "add": "D0", "if": "X1"}, {"every": 1, "add": "D1", "if": "!X1"},
             {"every": 1, "add": "D2", "if": ["X1", "D5 < 0"]},
             {"every": 1, "add": "D3", "if": "D5=D4"}, {"every": 1, "add": "D6", "if": "D5 >= -3"},
             {"every": 1, "add": "D7", "if": "D5 != 0x0"}, {"every": 1, "add": "D9", "if": "D0 > D1"},
             {"every": 1, "add": "D10", "if": "D0 <= 2"})",
         0x1000, "30: 150009000B0013000000FDFF1E000B0000000C000B00"},
        {R"({"every": 10, "add": "0x1000", "value": 1},
             {"every": 10, "copy": "0x1000", "to": "0x1100"})",
         0x1100, "10: 0100, 35: 0300"},  // at one moment, in their order
        {R"({"every": 1, "add": "D0", "to": 2})",
         0x1000, "1: 0100, 2: 0200, 3: 0000"},  // from 0
        {R"({"ramp": "D0", "from": 0, "to": 1000, "over": 1000})",
         0x1000, "99: 0000, 100: 6400, 199: 6400, 200: C800"},
        {R"({"at": 0, "set": "D0", "value": 1}, {"at": 0, "set": "D1", "value": 2},
             {"at": 0, "set": "D2", "value": 3}, {"at": 1, "copy": "D0", "to": "D4", "count": 2})",
         0x1000, "1: 01000200030000000100020000000000"},
        {R"({"at": 0, "set": "D0", "value": 448}, {"at": 1, "copy": "D0.6", "to": "M0", "count": 3})",
         0x0100, "1: 07"},  // over the end of a byte
        {R"({"at": 0, "set": "0x1000", "value": 1, "bytes": 4}, {"at": 0, "set": "0x1002", "value": 2},
             {"at": 1, "copy": "0x1000", "to": "0x1100"})",
         0x1100, "1: 01000000"},  // two bytes, since nothing says how many
        {R"({"at": 0, "set": "D5", "value": 32768}, {"at": 0, "set": "D6", "value": 32767},
             {"every": 1, "add": "D0", "if": "D5 < 0"}, {"every": 1, "add": "D1", "if": "D6 < 0"})",
         0x1000, "9: 09000000"},  // devices have a sign
        {R"({"every": 3, "add": "0x1000", "value": 1, "bytes": 4})",
         0x1000, "1000000000: A0860100, 1000000001: A0860100, 1000000002: A1860100"},
        {R"({"every": 1, "add": "0x1000", "value": 1, "bytes": 4})",
         0x1000, "500000000: A0860100, 500000001: A1860100"},  // a long sleep is not made up for
        // clang-format on
    };
    for (const auto& row : rows) {
        ScriptRun run(row.steps);
        for (const QString& moment : QString(row.moments).split(", ")) {
            const QByteArray bytes = QByteArray::fromHex(moment.section(": ", 1).toLatin1());
            const PlcMemory& memory = run.at(moment.section(':', 0, 0).toLongLong());
            EXPECT_EQ(memory.read(row.address, bytes.size()), bytes)
                << row.steps << " after " << moment.toStdString();
        }
    }
}

TEST(Script, StepOfOneMomentIsDoneOnce)
{
    ScriptRun run(R"({"at": 1000, "set": "0x1000", "value": 1})");
    run.at(1000).setByte(0x1000, 0);
    EXPECT_EQ(run.at(5000).byte(0x1000), 0);
}

TEST(Script, StepOfTheFirstMomentIsDoneAtTheStart)
{
    ScriptRun run(R"({"at": 0, "set": "0x1000", "value": 1})");
    EXPECT_EQ(run.memory.byte(0x1000), 1);
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

TEST(Script, ThrowsTheSameDiceAfterEachStart)
{
    ScriptRun run(R"({"every": 1, "random": "D0", "from": 0, "to": 65535})");
    const QByteArray first = run.at(3).read(0x1000, 2);
    PlcMemory fresh;
    run.program->start(fresh);
    run.program->advance(fresh, 3);
    EXPECT_EQ(fresh.read(0x1000, 2), first);
}

TEST(Script, CommentsMayStandAnywhere)
{
    EXPECT_EQ(
        scriptError(R"({"comment": "a", "steps": [{"comment": "b", "at": 0, "toggle": "M0"}]})"),
        "no error");
}

TEST(Script, ErrorNamesTheLine)
{
    EXPECT_EQ(scriptError("{\n\"steps\": [\n{]}"), "line 3: unterminated object");
    EXPECT_EQ(scriptError("[]"), "expected { \"steps\": [ ... ] }");
    EXPECT_EQ(scriptError(R"({"steps": [], "stepps": []})"), "expected { \"steps\": [ ... ] }");
    EXPECT_EQ(
        scriptError("{\"steps\": [{\"comment\": \"]}\\\"[{\\\\\", \"at\": 0, \"toggle\": \"M0\",\n"
                    "\"if\": [\"M1\"]},\n{}]}"),
        "line 3, step 2: expected exactly one of \"set\", \"add\", \"toggle\", \"copy\", "
        "\"ramp\" and \"random\"");
}

TEST(Script, RandomValuesStayInTheirRangeAndAreTheSameAgain)
{
    const QByteArray steps = R"({"every": 1, "random": "D0", "from": -2, "to": 2},
                                {"every": 1, "random": "M0"})";
    ScriptRun first(steps);
    ScriptRun second(steps);
    QSet<int> seen;
    for (int ms = 1; ms <= 200; ++ms) {
        const auto value = static_cast<qint16>(first.at(ms).value(0x1000, 2));
        EXPECT_GE(value, -2);
        EXPECT_LE(value, 2);
        EXPECT_EQ(static_cast<qint16>(second.at(ms).value(0x1000, 2)), value);
        seen << value << 10 + first.memory.byte(0x0100);
    }
    EXPECT_EQ(seen.size(), 5 + 2);
}

TEST(Script, ErrorNamesTheStepAndWhatWasRead)
{
    const char* const oneAction = "expected exactly one of \"set\", \"add\", \"toggle\", "
                                  "\"copy\", \"ramp\" and \"random\"";
    const char* const oneTime = "expected either \"at\" or \"every\"";
    const char* const absent = "this PLC does not have all of that memory";
    const struct
    {
        const char* step;
        QString error;
    } rows[] = {
        {R"({"at": 0})", oneAction},
        {R"({"at": 0, "toggle": "M0", "add": "D0"})", oneAction},
        {R"({"toggle": "M0"})", oneTime},
        {R"({"at": 1, "every": 1, "toggle": "M0"})", oneTime},
        {R"({"every": 0, "toggle": "M0"})",
         "\"every\" is 0: expected a whole number from 1 to 604800000"},
        {R"({"at": 0.5, "toggle": "M0"})",
         "\"at\" is 0.5: expected a whole number from 0 to 604800000"},
        {R"({"at": 0, "toggle": "D0"})",
         "\"toggle\" is \"D0\": expected a bit, as in \"X0\", \"D5.3\" or \"0x0080.3\""},
        {R"({"at": 0, "add": "M1"})",
         "\"add\" is \"M1\": expected a word, as in \"D100\", and not a bit"},
        {R"({"at": 0, "set": 5, "value": 1})",
         "\"set\" is 5: expected a device, as in \"D100\", or an address, as in \"0x1000\" or "
         "\"0x0100.3\""},
        {R"({"at": 0, "set": "0x10000", "value": 1})",
         "\"set\": invalid address '0x10000': expected a device, as in D100, or 0x0000 to 0xFFFF"},
        {R"({"at": 0, "set": "X8", "value": 1})",
         "\"set\": invalid device 'X8': expected X0 to X377, in octal"},
        {R"({"at": 0, "set": "D0"})",
         "\"value\" is missing: expected a whole number from -32768 to 65535"},
        {R"({"at": 0, "set": "D0", "value": 70000})",
         "\"value\" is 70000: expected a whole number from -32768 to 65535"},
        {R"({"at": 0, "set": "0x1000", "value": 256, "bytes": 1})",
         "\"value\" is 256: expected a whole number from -128 to 255"},
        {R"({"at": 0, "set": "X0", "value": 2})",
         "\"value\" is 2: expected a whole number from 0 to 1"},
        {R"({"at": 0, "set": "0x1000", "value": 1, "bytes": 3})",
         "\"bytes\" is 3: expected 1, 2 or 4"},
        {R"({"at": 0, "set": "0x11FF", "value": 1})", QString("\"set\": ") + absent},
        {R"({"at": 0, "set": "D256", "value": 1})", QString("\"set\": ") + absent},
        {R"({"at": 0, "copy": "D0", "to": "D250", "count": 7})", QString("\"to\": ") + absent},
        {R"({"at": 0, "copy": "X0", "to": "D0"})",
         "\"to\" is \"D0\": expected as many bits as there are in one of \"copy\""},
        {R"({"at": 0, "copy": "32CV235", "to": "D0"})",
         "\"to\" is \"D0\": expected as many bits as there are in one of \"copy\""},
        {R"({"at": 0, "set": "D0", "value": 1, "to": 3})", "\"to\" is not expected here"},
        {R"({"ramp": "D0", "from": 0, "to": 9, "over": 1, "then": "stop"})",
         "\"then\" is \"stop\": expected \"hold\", \"back\" or \"repeat\""},
        {R"({"at": 0, "random": "D0", "from": 5, "to": 4})",
         "\"to\" is 4: expected a whole number from 5 to 65535"},
        {R"({"at": 0, "toggle": "M0", "if": "X0 and X1"})",
         "\"if\": invalid condition 'X0 and X1': expected a bit, as in \"X0\" or \"!X0\", or a "
         "comparison, as in \"D100 > 5\""},
        {R"({"at": 0, "toggle": "M0", "if": "D0"})",
         "\"if\": what is D0 compared with? Write a comparison, as in \"D0 > 5\""},
        {R"({"at": 0, "toggle": "M0", "if": ["X0", 1]})",
         "\"if\" is [\"X0\",1]: expected a condition, as in \"D100 > 5\", or a list"},
        {R"({"at": 0, "toggle": "M0", "if": "Q7"})",
         "\"if\": invalid device 'Q7': expected X, Y, M, S, T, C, D, TV, CV or 32CV"},
        {R"({"at": 0, "toggle": "M0", "if": "M600"})", QString("\"if\": ") + absent},
    };
    for (const auto& row : rows)
        EXPECT_EQ(errorOfStep(row.step), "line 3, step 2: " + row.error) << row.step;
    EXPECT_EQ(errorOfStep("7"), "step 2: 7 is not a step: expected { ... }");
}

TEST(Script, NumbersMayBeAsLargeAsTheirLimits)
{
    const struct
    {
        const char* step;
        const char* error;
    } rows[] = {
        {R"({"at": 604800000, "toggle": "M0"})", "no error"},
        {R"({"at": 604800001, "toggle": "M0"})",
         "\"at\" is 604800001: expected a whole number from 0 to 604800000"},
        {R"({"every": 604800001, "toggle": "M0"})",
         "\"every\" is 604800001: expected a whole number from 1 to 604800000"},
        {R"({"ramp": "D0", "from": 0, "to": 1, "over": 0})",
         "\"over\" is 0: expected a whole number from 1 to 604800000"},
        {R"({"ramp": "D0", "from": 0, "to": 1, "over": 1, "after": -1})",
         "\"after\" is -1: expected a whole number from 0 to 604800000"},
        {R"({"at": 0, "add": "D0", "value": -65536})",
         "\"value\" is -65536: expected a whole number from -65535 to 65535"},
        {R"({"at": 0, "add": "D0", "from": 1})",
         "\"to\" is missing: expected a whole number from 1 to 65535"},
        {R"({"at": 0, "random": "D0", "from": -32769, "to": 0})",
         "\"from\" is -32769: expected a whole number from -32768 to 65535"},
        {R"({"at": 0, "set": "0x1000", "value": 0, "bytes": 5})",
         "\"bytes\" is 5: expected a whole number from 1 to 4"},
        {R"({"at": 0, "copy": "0x0000", "to": "0xFFF0", "bytes": 16})", "no error"},
        {R"({"at": 0, "copy": "0xFFF0", "to": "0x0000", "bytes": 17})",
         "\"bytes\" is 17: expected a whole number from 1 to 16"},
        {R"({"at": 0, "copy": "0x0000", "to": "0xFFFF"})", "no error"},
        {R"({"at": 0, "copy": "D0", "to": "D1", "count": 30720})",
         "\"count\" is 30720: expected a whole number from 1 to 30719"},
        {R"({"at": 0, "copy": "D0", "to": "D1", "count": 0})",
         "\"count\" is 0: expected a whole number from 1 to 30719"},
    };
    for (const auto& row : rows) {
        const QString error = errorText(
            [&row] { parseScript(QByteArray("{\"steps\":[") + row.step + "]}", PlcMemory(), 1); });
        EXPECT_EQ(error.section(": ", error.startsWith("line") ? 1 : 0), row.error) << row.step;
    }
}

TEST(Script, CopyNeedsAllOfItsMemory)
{
    const char* const absent = "line 3, step 2: \"to\": this PLC does not have all of that memory";
    EXPECT_EQ(errorOfStep(R"({"at": 0, "copy": "M0", "to": "M504", "count": 8})"), "no error");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "copy": "M0", "to": "M504", "count": 9})"), absent);
    EXPECT_EQ(errorOfStep(R"({"at": 0, "copy": "M1", "to": "M510", "count": 2})"), "no error");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "copy": "M1", "to": "M511", "count": 2})"), absent);
    EXPECT_EQ(errorOfStep(R"({"at": 0, "copy": "D0", "to": "D254", "count": 2})"), "no error");
    EXPECT_EQ(errorOfStep(R"({"at": 0, "copy": "D0", "to": "D255", "count": 2})"), absent);
}

TEST(Script, FileThatIsMissingIsNamed)
{
    const auto errorOfFile = [](const char* path) {
        return errorText([path] { loadScript(path, PlcMemory(), 1); });
    };
    EXPECT_EQ(errorOfFile("/nonexistent/plant.json"),
              "/nonexistent/plant.json: No such file or directory");
    EXPECT_EQ(errorOfFile("/dev/zero"), "/dev/zero: not a regular file");
    QTemporaryFile large;
    ASSERT_TRUE(large.open() && large.resize(5 << 20));
    EXPECT_EQ(errorOfFile(qPrintable(large.fileName())),
              large.fileName() + ": 5 MB is too large: at most 1 MB makes sense");
}
