// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A program from a JSON file: a list of steps, each done once or again and again.
//
//   { "steps": [
//     { "at": 0,       "set": "D0", "value": 1234 },
//     { "every": 500,  "add": "D1", "value": 1, "from": 0, "to": 999 },
//     { "every": 1000, "toggle": "X0" },
//     { "every": 10,   "copy": "X0", "to": "Y0", "count": 8 },
//     { "every": 100,  "ramp": "D2", "from": 0, "to": 500, "over": 5000, "then": "back" },
//     { "every": 1000, "random": "D3", "from": -10, "to": 10 },
//     { "every": 2000, "after": 500, "set": "0x0100.3", "value": 1, "if": ["X1", "D1 > 100"] } ] }
//
// Times are milliseconds from the start of the program; "every" starts after its first interval, or
// at "after". A place is a device, a bit of a word (D5.3), a byte address or a bit of a byte;
// behind a byte address "bytes" says how many (1, 2 or 4; default 2). A sum past "to" starts again
// at "from". A ramp goes from "from" to "to" in "over" milliseconds; then it holds (the default),
// goes back or repeats. Steps that are due together run in the order of the file. A "comment" may
// stand in any step and beside "steps".

#pragma once

#include "tools/fxsim/faults/dice.h"
#include "tools/fxsim/plc/number_text.h"
#include "tools/fxsim/plc/plc_memory.h"

#include <memory>

namespace fxsim {

// A bit or a number in the memory.
struct Cell
{
    int address = 0;
    int bit = 0;
    int byteCount = 2;  // 0: the bit
    bool isSigned = false;

    qint64 value(const PlcMemory& memory) const;
    void setValue(PlcMemory& memory, qint64 value) const;
};

struct Condition
{
    enum class Is
    {
        Equal,
        Unequal,
        Less,
        LessOrEqual,
        Greater,
        GreaterOrEqual
    };
    Cell left;
    Is is = Is::Unequal;
    std::optional<Cell> right;
    qint64 number = 0;  // if there is no cell on the right

    bool holds(const PlcMemory& memory) const;
};

struct ScriptStep
{
    enum class Action
    {
        Set,
        Add,
        Toggle,
        Copy,
        Ramp,
        Random
    };
    enum class Then
    {
        Hold,
        Back,
        Repeat
    };

    Action action = Action::Set;
    qint64 firstMs = 0;
    qint64 everyMs = 0;             // 0: once
    QVector<Condition> conditions;  // all of them
    Cell cell;
    qint64 value = 0;
    qint64 from = 0;  // where a sum past `to` starts again
    qint64 to = -1;   // below `from`: the sum wraps in its bytes
    Cell copyTo;
    int copied = 0;  // bits or bytes
    qint64 overMs = 0;
    Then then = Then::Hold;
};

class ScriptProgram : public Program
{
public:
    ScriptProgram(const QVector<ScriptStep>& steps, quint64 seed) : m_steps(steps), m_seed(seed) {}

    void start(PlcMemory& memory) override;
    void advance(PlcMemory& memory, qint64 elapsedMs) override;

private:
    void run(PlcMemory& memory, const ScriptStep& step, qint64 atMs);

    QVector<ScriptStep> m_steps;
    quint64 m_seed;
    Dice m_dice{m_seed, 0};
    QVector<qint64> m_nextMs;
};

// These throw an Error that names the file, the line and the step, also for a place that `memory`
// does not have.
std::unique_ptr<Program> parseScript(const QByteArray& json, const PlcMemory& memory, quint64 seed);
std::unique_ptr<Program> loadScript(const QString& path, const PlcMemory& memory, quint64 seed);

}  // namespace fxsim
