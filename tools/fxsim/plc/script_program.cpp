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

void add(PlcMemory& memory, const ScriptStep& step)
{
    qint64 sum = step.cell.value(memory) + step.value;
    if (step.to >= step.from && (sum > step.to || sum < step.from))
        sum = step.from;
    step.cell.setValue(memory, sum);
}

void copyBits(PlcMemory& memory, const ScriptStep& step)
{
    QVector<bool> bits;
    for (int bit = step.cell.bit; bits.size() < step.copied; ++bit)
        bits.append(memory.bit(step.cell.address + bit / bitsPerByte, bit % bitsPerByte));
    int to = step.copyTo.bit;
    for (const bool on : bits) {
        memory.setBit(step.copyTo.address + to / bitsPerByte, to % bitsPerByte, on);
        ++to;
    }
}

void copyBytes(PlcMemory& memory, const ScriptStep& step)
{
    const QByteArray bytes = memory.read(step.cell.address, step.copied);
    for (int offset = 0; offset < bytes.size(); ++offset)
        memory.setByte(step.copyTo.address + offset, static_cast<quint8>(bytes[offset]));
}

qint64 rampValue(const ScriptStep& step, qint64 elapsedMs)
{
    qint64 phaseMs = std::min(elapsedMs, step.overMs);
    if (step.then == ScriptStep::Then::Repeat)
        phaseMs = elapsedMs % step.overMs;
    if (step.then == ScriptStep::Then::Back)
        phaseMs = step.overMs - qAbs(elapsedMs % (2 * step.overMs) - step.overMs);
    return step.from + (step.to - step.from) * phaseMs / step.overMs;
}

// The next firing after `elapsedMs` of a step whose missed ones are left out.
qint64 skippedTo(const ScriptStep& step, qint64 nextMs, qint64 elapsedMs)
{
    if (nextMs > elapsedMs || step.everyMs == 0)
        return nextMs;
    return nextMs + ((elapsedMs - nextMs) / step.everyMs + 1) * step.everyMs;
}

}  // namespace

qint64 Cell::value(const PlcMemory& memory) const
{
    if (byteCount == 0)
        return memory.bit(address, bit) ? 1 : 0;
    const qint64 value = memory.value(address, byteCount);
    const ValueLimits limits = limitsOf(byteCount);
    return isSigned && value >= -limits.lowest ? value - limits.highest - 1 : value;
}

void Cell::setValue(PlcMemory& memory, qint64 value) const
{
    if (byteCount == 0)
        memory.setBit(address, bit, value != 0);
    else
        memory.setValue(address, byteCount, static_cast<quint32>(value));
}

bool Condition::holds(const PlcMemory& memory) const
{
    const qint64 one = left.value(memory);
    const qint64 other = right ? right->value(memory) : number;
    switch (is) {
    case Is::Equal:
        return one == other;
    case Is::Unequal:
        return one != other;
    case Is::Less:
        return one < other;
    case Is::LessOrEqual:
        return one <= other;
    case Is::Greater:
        return one > other;
    case Is::GreaterOrEqual:
        return one >= other;
    }
    return false;
}

void ScriptProgram::start(PlcMemory& memory)
{
    m_dice = Dice(m_seed, 0);
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
        if (std::all_of(step.conditions.begin(), step.conditions.end(),
                        [&memory](const Condition& condition) { return condition.holds(memory); }))
            run(memory, step, *next);
        *next = step.everyMs > 0 ? *next + step.everyMs : never;
    }
    for (int index = 0; index < m_steps.size(); ++index)
        m_nextMs[index] = skippedTo(m_steps[index], m_nextMs[index], elapsedMs);
}

void ScriptProgram::run(PlcMemory& memory, const ScriptStep& step, qint64 atMs)
{
    switch (step.action) {
    case ScriptStep::Action::Set:
        step.cell.setValue(memory, step.value);
        break;
    case ScriptStep::Action::Add:
        add(memory, step);
        break;
    case ScriptStep::Action::Toggle:
        step.cell.setValue(memory, 1 - step.cell.value(memory));
        break;
    case ScriptStep::Action::Copy:
        step.cell.byteCount == 0 ? copyBits(memory, step) : copyBytes(memory, step);
        break;
    case ScriptStep::Action::Ramp:
        step.cell.setValue(memory, rampValue(step, atMs - step.firstMs));
        break;
    case ScriptStep::Action::Random:
        step.cell.setValue(
            memory, step.from + static_cast<qint64>(m_dice.next() %
                                                    static_cast<quint64>(step.to - step.from + 1)));
        break;
    }
}

}  // namespace fxsim
