// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A program from a JSON file: a list of steps, each done once or again and again.
//
//   { "steps": [
//     { "at": 0,       "set": "0x1000", "value": 1234, "bytes": 2 },      two bytes, lowest first
//     { "every": 500,  "add": "0x1002", "value": 1, "bytes": 2, "from": 0, "to": 999 },
//     { "every": 1000, "toggle": "0x0080.0" },                            bit 0 of byte 0x0080
//     { "every": 100,  "copy": "0x1000", "to": "0x1100", "bytes": 8 },
//     { "every": 2000, "after": 500, "set": "0x0100.3", "value": 1 } ] }
//
// Times are milliseconds from power-on; "every" starts after its first interval, or at "after".
// "bytes" is 1, 2 or 4 for set and add and 1 to 65536 for copy (default 2). A sum past "to" starts
// again at "from". Steps that are due together run in the order of the file. A "comment" may stand
// in any step and beside "steps".

#pragma once

#include "tools/fxsim/plc/program.h"

#include <QString>

#include <memory>

namespace fxsim {

struct ScriptStep
{
    enum class Action
    {
        Set,
        SetBit,
        Add,
        Toggle,
        Copy
    };

    Action action = Action::Set;
    qint64 firstMs = 0;
    qint64 everyMs = 0;  // 0: once
    int address = 0;
    int bit = 0;
    int toAddress = 0;  // of a copy
    int byteCount = 2;
    qint64 value = 0;
    qint64 from = 0;  // where a sum past `to` starts again
    qint64 to = -1;   // below `from`: the sum wraps in its bytes
};

class ScriptProgram : public Program
{
public:
    explicit ScriptProgram(const QVector<ScriptStep>& steps) : m_steps(steps) {}

    void start(PlcMemory& memory) override;
    void advance(PlcMemory& memory, qint64 elapsedMs) override;

private:
    QVector<ScriptStep> m_steps;
    QVector<qint64> m_nextMs;
};

// These throw an Error that names the step or the line, and the file.
std::unique_ptr<Program> parseScript(const QByteArray& json);
std::unique_ptr<Program> loadScript(const QString& path);

}  // namespace fxsim
