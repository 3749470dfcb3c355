// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/line/simulator.h"

#include "tools/fxsim/line/frame_reader.h"
#include "tools/fxsim/plc/devices.h"

#include <algorithm>

namespace fxsim {

namespace {

QByteArray nameOf(char character)
{
    static const QMap<char, QByteArray> names = {
        {stx, "<STX>"}, {etx, "<ETX>"}, {enq, "<ENQ>"}, {ack, "<ACK>"}, {nak, "<NAK>"}};
    if (character >= ' ' && character <= '~')
        return QByteArray(1, character);
    return names.value(character, '<' + hexOfBytes(QByteArray(1, character)) + '>');
}

constexpr char arrows[] = {'>', '<', '*'};  // from the host, to it, and a note

constexpr int labelWidth = 30;

QByteArray row(const char* label, qint64 number)
{
    return "  " + QByteArray(label).leftJustified(labelWidth) + QByteArray::number(number) + '\n';
}

QByteArray rowUnlessZero(const char* label, qint64 number)
{
    return number == 0 ? QByteArray() : row(label, number);
}

}  // namespace

Simulator::Simulator(const Settings& settings, std::unique_ptr<Program> program, qint64 nowUs)
    : m_settings(settings), m_program(std::move(program))
{
    powerOnWith(settings.model != nullptr ? memoryOf(*settings.model) : PlcMemory(), nowUs);
}

void Simulator::powerOnWith(const PlcMemory& memory, qint64 nowUs)
{
    m_memory = memory;
    m_powerOnImage = memory.image();
    m_poweredUs = nowUs;
    startProgram(nowUs);
}

void Simulator::advance(qint64 nowUs)
{
    if (m_program && m_isRunning && !isOff(nowUs))
        m_program->advance(m_memory, (nowUs - m_inStateUs) / usPerMs);
    applySwitches();
    refresh(nowUs);
}

void Simulator::refresh(qint64 nowUs)
{
    if (m_settings.model == nullptr || isOff(nowUs))
        return;
    showState(m_memory, {m_isRunning, (nowUs - m_poweredUs) / usPerMs,
                         (nowUs - m_inStateUs) / usPerMs, std::max(1, m_settings.timing.scanMs)});
    const qint64 second = nowUs / usPerSecond;
    if (m_settings.startedAt.isValid() && second != m_shownSecond)
        showTime(m_memory, m_settings.startedAt.addSecs(second));
    m_shownSecond = second;
}

void Simulator::setRunning(bool running, qint64 nowUs)
{
    if (running == m_isRunning)
        return;
    m_isRunning = running;
    if (!running)
        switchOutputsOff();
    startProgram(nowUs);
}

void Simulator::setFaults(const FaultPlan& plan)
{
    m_settings.faults = plan;
    m_exchangesBeforePlan = m_statistics.exchanges;
}

void Simulator::switchInput(int number, bool on)
{
    m_switches[number] = on;
    applySwitches();
}

void Simulator::releaseInput(int number)
{
    switchInput(number, false);  // no program may set it
    m_switches.remove(number);
}

void Simulator::releaseInputs()
{
    for (const int number : m_switches.keys())
        releaseInput(number);
}

void Simulator::powerCycle(int offMs, qint64 nowUs)
{
    ++m_statistics.powerCycles;
    m_memory.setImage(m_powerOnImage);
    m_offUntilUs = nowUs + offMs * usPerMs;
    m_poweredUs = m_offUntilUs;
    startProgram(m_offUntilUs);
}

void Simulator::trace(const TraceEntry& entry) const
{
    if (m_trace)
        m_trace(entry);
}

void Simulator::applySwitches()
{
    static const Device first = device("X0");
    for (auto input = m_switches.constBegin(); input != m_switches.constEnd(); ++input) {
        const Device device = first.next(input.key());
        m_memory.setBit(device.address(), device.bit(), input.value());
    }
}

void Simulator::switchOutputsOff()
{
    const int last = device("Y377").address();
    for (int address = device("Y0").address(); address <= last; ++address)
        m_memory.setByte(address, 0);
}

void Simulator::startProgram(qint64 nowUs)
{
    m_inStateUs = nowUs;
    m_shownSecond = -1;
    if (m_program && m_isRunning)
        m_program->start(m_memory);
    applySwitches();
    refresh(nowUs);
}

QByteArray readable(const QByteArray& bytes)
{
    QByteArray text;
    for (const char character : bytes)
        text += nameOf(character);
    return text;
}

QByteArray traceLine(const TraceEntry& entry)
{
    const QByteArray us = QByteArray::number(entry.atUs % usPerSecond).rightJustified(6, '0');
    QByteArray line = QByteArray::number(entry.atUs / usPerSecond).rightJustified(5) + '.' + us +
                      ' ' + entry.client + ' ' + arrows[static_cast<int>(entry.direction)];
    if (!entry.bytes.isEmpty())
        line += ' ' + entry.bytes.toHex(' ').toUpper() + " | " + readable(entry.bytes);
    if (!entry.text.isEmpty())
        line += (entry.bytes.isEmpty() ? " " : " | ") + entry.text;
    return line;
}

void Statistics::countRequest(const Request& request)
{
    ++verdicts[static_cast<size_t>(request.verdict)];
    if (request.verdict != Verdict::Good)
        return;
    reads += request.command == Command::Read;
    writes += request.command == Command::Write;
    forces += request.command == Command::ForceOn || request.command == Command::ForceOff;
}

QByteArray Statistics::text() const
{
    QByteArray text = row("clients", clients) + row("exchanges", exchanges) + row("reads", reads) +
                      row("writes", writes) + row("forces", forces) + row("enquiries", enquiries) +
                      row("characters in", charactersIn) + row("characters out", charactersOut);
    for (size_t verdict = 1; verdict < verdicts.size(); ++verdict)
        text += rowUnlessZero(QByteArray("refused: ") + verdictText(static_cast<Verdict>(verdict)),
                              verdicts[verdict]);
    text += rowUnlessZero("overlong frames", overlongFrames) +
            rowUnlessZero("frames before ENQ", ungreetedFrames) +
            rowUnlessZero("junk characters", junkCharacters) +
            rowUnlessZero("characters while off", ignoredCharacters) +
            rowUnlessZero("characters lost", charactersLost) +
            rowUnlessZero("power cycles", powerCycles);
    for (size_t fault = 0; fault < faults.size(); ++fault)
        text += rowUnlessZero(QByteArray("fault: ") + factsOf(static_cast<FaultKind>(fault)).name,
                              faults[fault]);
    return text;
}

}  // namespace fxsim
