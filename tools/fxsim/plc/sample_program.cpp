// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/plc/sample_program.h"

#include <algorithm>
#include <cmath>

namespace fxsim {

namespace {

constexpr int inputs = 0x0080;
constexpr int outputs = 0x00A0;
constexpr int timerContacts = 0x00C0;
constexpr int relays = 0x0100;
constexpr int counterContacts = 0x01C0;
constexpr int timerValues = 0x0800;
constexpr int edgeCounter = 0x0A00;
constexpr int tenthCounter = 0x0A02;
constexpr int wideCounter = 0x0C00;
constexpr int words = 0x1000;

constexpr int bytesPerWord = 2;
constexpr qint64 inputStepMs = 500;
constexpr int relayStepMs = 250;
constexpr int tenthMs = 100;
constexpr int timerCount = 4;
constexpr int timerStep = 50;  // tenths
constexpr int timerHoldMs = 1000;
constexpr int edgeContactAt = 10;
constexpr int tenthContactAt = 1000;
constexpr int wideStart = 65000;
constexpr int widePerTenth = 37;
constexpr int movingBits = 64;
constexpr int movingStepMs = 200;
constexpr qint64 triangleTop = 1000;
constexpr int triangleStepMs = 10;
constexpr int sawTop = 100;
constexpr double sinePeriodMs = 20000;
constexpr double fullTurn = 6.283185307179586;

void setInputs(PlcMemory& memory, qint64 elapsedMs)
{
    for (int input = 0; input < bitsPerByte; ++input)
        memory.setBit(inputs, input, elapsedMs / (inputStepMs * (input + 1)) % 2 == 1);
}

void setTimers(PlcMemory& memory, qint64 elapsedMs)
{
    for (int timer = 0; timer < timerCount; ++timer) {
        const int preset = timerStep * (timer + 1);
        const int runMs = preset * tenthMs;
        const int phaseMs = static_cast<int>(elapsedMs % (runMs + timerHoldMs));
        const bool done = phaseMs >= runMs;
        memory.setValue(timerValues + bytesPerWord * timer, bytesPerWord,
                        static_cast<quint32>(std::min(phaseMs / tenthMs, preset)));
        memory.setBit(timerContacts, timer, done);
        memory.setBit(outputs, timer, done);
    }
}

void addTo(PlcMemory& memory, int address, int byteCount, qint64 increase)
{
    memory.setValue(address, byteCount,
                    static_cast<quint32>(memory.value(address, byteCount) + increase));
}

// The first input rises at every odd multiple of its step.
qint64 risingEdges(qint64 elapsedMs)
{
    return (elapsedMs / inputStepMs + 1) / 2;
}

void advanceCounters(PlcMemory& memory, qint64 beforeMs, qint64 elapsedMs)
{
    const qint64 tenths = elapsedMs / tenthMs - beforeMs / tenthMs;
    addTo(memory, edgeCounter, bytesPerWord, risingEdges(elapsedMs) - risingEdges(beforeMs));
    addTo(memory, tenthCounter, bytesPerWord, tenths);
    addTo(memory, wideCounter, 2 * bytesPerWord, tenths * widePerTenth);
    memory.setBit(counterContacts, 0, memory.value(edgeCounter, bytesPerWord) >= edgeContactAt);
    memory.setBit(counterContacts, 1, memory.value(tenthCounter, bytesPerWord) >= tenthContactAt);
}

void setWords(PlcMemory& memory, qint64 elapsedMs)
{
    const auto setWord = [&memory](int word, qint64 value) {
        memory.setValue(words + bytesPerWord * word, bytesPerWord, static_cast<quint32>(value));
    };
    const qint64 triangle = elapsedMs / triangleStepMs % (2 * triangleTop);
    const double turn = fullTurn * static_cast<double>(elapsedMs) / sinePeriodMs;
    const quint64 moving = static_cast<quint64>(1) << (elapsedMs / movingStepMs % movingBits);
    setWord(0, elapsedMs / 1000);
    setWord(1, triangle <= triangleTop ? triangle : 2 * triangleTop - triangle);
    setWord(2, std::lround(1000 * std::sin(turn)));
    setWord(3, elapsedMs / tenthMs % sawTop);
    memory.setValue(words + bytesPerWord * 4, 2 * bytesPerWord, static_cast<quint32>(moving));
    memory.setValue(words + bytesPerWord * 6, 2 * bytesPerWord, static_cast<quint32>(moving >> 32));
    memory.setValue(words + bytesPerWord * 8, 2 * bytesPerWord, static_cast<quint32>(elapsedMs));
}

}  // namespace

void SampleProgram::start(PlcMemory& memory)
{
    m_elapsedMs = 0;
    memory.setValue(edgeCounter, bytesPerWord, 0);
    memory.setValue(tenthCounter, bytesPerWord, 0);
    memory.setValue(wideCounter, 2 * bytesPerWord, wideStart);
    advance(memory, 0);
}

void SampleProgram::advance(PlcMemory& memory, qint64 elapsedMs)
{
    setInputs(memory, elapsedMs);
    memory.setByte(relays, static_cast<quint8>(1 << (elapsedMs / relayStepMs % bitsPerByte)));
    setTimers(memory, elapsedMs);
    advanceCounters(memory, m_elapsedMs, elapsedMs);
    setWords(memory, elapsedMs);
    m_elapsedMs = elapsedMs;
}

}  // namespace fxsim
