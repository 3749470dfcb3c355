// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See script_program.h: running the steps. Reading them is script_reader.cpp.

#include "tools/fxsim/plc/script_program.h"

#include <algorithm>
#include <limits>

namespace fxsim {

namespace {

constexpr qint64 never = std::numeric_limits<qint64>::max();
constexpr int mostCatchUps = 100000;  // steps at once after the machine slept; more are left out

void addStep(PlcMemory& memory, const ScriptStep& step)
{
    qint64 sum = static_cast<qint64>(memory.value(step.address, step.byteCount)) + step.value;
    if (step.to >= step.from && (sum > step.to || sum < step.from))
        sum = step.from;
    memory.setValue(step.address, step.byteCount, static_cast<quint32>(sum));
}

void copyStep(PlcMemory& memory, const ScriptStep& step)
{
    const QByteArray bytes = memory.read(step.address, step.byteCount);
    for (int offset = 0; offset < bytes.size(); ++offset)
        memory.setByte(step.toAddress + offset, static_cast<quint8>(bytes[offset]));
}

void runStep(PlcMemory& memory, const ScriptStep& step)
{
    switch (step.action) {
    case ScriptStep::Action::Set:
        memory.setValue(step.address, step.byteCount, static_cast<quint32>(step.value));
        break;
    case ScriptStep::Action::SetBit:
        memory.setBit(step.address, step.bit, step.value != 0);
        break;
    case ScriptStep::Action::Add:
        addStep(memory, step);
        break;
    case ScriptStep::Action::Toggle:
        memory.setBit(step.address, step.bit, !memory.bit(step.address, step.bit));
        break;
    case ScriptStep::Action::Copy:
        copyStep(memory, step);
        break;
    }
}

// The next firing after `elapsedMs` of a step whose missed ones are left out.
qint64 skippedTo(const ScriptStep& step, qint64 nextMs, qint64 elapsedMs)
{
    if (nextMs > elapsedMs || step.everyMs == 0)
        return nextMs;
    return nextMs + ((elapsedMs - nextMs) / step.everyMs + 1) * step.everyMs;
}

}  // namespace

void ScriptProgram::start(PlcMemory& memory)
{
    m_nextMs.clear();
    for (const ScriptStep& step : m_steps)
        m_nextMs.append(step.firstMs);
    advance(memory, 0);
}

void ScriptProgram::advance(PlcMemory& memory, qint64 elapsedMs)
{
    for (int done = 0; done < mostCatchUps; ++done) {
        const auto next = std::min_element(m_nextMs.begin(), m_nextMs.end());
        if (next == m_nextMs.end() || *next > elapsedMs)
            return;
        const ScriptStep& step = m_steps[static_cast<int>(next - m_nextMs.begin())];
        runStep(memory, step);
        *next = step.everyMs > 0 ? *next + step.everyMs : never;
    }
    for (int index = 0; index < m_steps.size(); ++index)
        m_nextMs[index] = skippedTo(m_steps[index], m_nextMs[index], elapsedMs);
}

}  // namespace fxsim
