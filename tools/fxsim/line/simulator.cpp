// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/line/simulator.h"

namespace fxsim {

Simulator::Simulator(const Settings& settings, std::unique_ptr<Program> program, qint64 nowUs)
    : m_settings(settings), m_program(std::move(program))
{
    powerOnWith(PlcMemory(), nowUs);
}

void Simulator::powerOnWith(const PlcMemory& memory, qint64 nowUs)
{
    m_memory = memory;
    m_powerOnImage = memory.image();
    startProgram(nowUs);
}

void Simulator::advance(qint64 nowUs)
{
    if (m_program && !isOff(nowUs))
        m_program->advance(m_memory, (nowUs - m_programStartUs) / usPerMs);
}

void Simulator::setFaults(const FaultPlan& plan)
{
    m_settings.faults = plan;
    m_exchangesBeforePlan = m_statistics.exchanges;
}

void Simulator::powerCycle(int offMs, qint64 nowUs)
{
    ++m_statistics.powerCycles;
    m_memory.setImage(m_powerOnImage);
    m_offUntilUs = nowUs + offMs * usPerMs;
    startProgram(m_offUntilUs);
}

void Simulator::trace(const TraceEntry& entry) const
{
    if (m_trace)
        m_trace(entry);
}

void Simulator::startProgram(qint64 nowUs)
{
    m_programStartUs = nowUs;
    if (m_program)
        m_program->start(m_memory);
}

}  // namespace fxsim
