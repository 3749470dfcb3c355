// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/support/virtual_line.h"

namespace tool_tests {

namespace {

constexpr int wordBytes = 2;
constexpr qint64 usPerMs = 1000;

}  // namespace

VirtualLine::VirtualLine(const fxsim::Settings& settings) : m_plc(settings, nullptr, 0)
{
    open();
}

void VirtualLine::open()
{
    m_nowUs = std::max(m_nowUs, m_backAtUs);
    m_session.emplace(m_plc, "virtual");
}

bool VirtualLine::send(const QByteArray& bytes)
{
    if (!isOpen())
        return false;
    m_sent.append(bytes);
    m_session->receive(bytes, m_nowUs);
    return true;
}

QByteArray VirtualLine::receive(int timeoutMs)
{
    if (!isOpen())
        return {};
    if (const std::optional<int> dropMs = m_session->takeLinkDrop()) {
        m_backAtUs = m_nowUs + usPerMs * *dropMs;
        m_session.reset();
        return {};
    }
    const qint64 deadlineUs = m_nowUs + usPerMs * timeoutMs;
    const qint64 dueUs = m_session->nextDueUs();
    m_nowUs =
        dueUs == fxsim::nothingDue || dueUs > deadlineUs ? deadlineUs : std::max(dueUs, m_nowUs);
    return m_session->takeDue(m_nowUs);
}

void VirtualLine::setFaults(const char* faults)
{
    m_plc.setFaults(fxsim::parseFaults(QString::fromLatin1(faults)));
}

void VirtualLine::refuse(int firstAddress, int lastAddress)
{
    memory().setMissing({{firstAddress, lastAddress}});
}

void VirtualLine::refuseNothing()
{
    memory().setPresent({{0, fxsim::addressableBytes - 1}});
}

fxtools::LoopSettings VirtualLine::loopSettings() const
{
    fxtools::LoopSettings settings;
    settings.clockUs = [this] { return m_nowUs; };
    return settings;
}

// Spread over all 16 bits, so that neighbours differ in both bytes.
quint16 wordNaming(int byteAddress)
{
    return static_cast<quint16>(byteAddress / wordBytes * 40503 + 12345);
}

void fillWithOwnAddresses(fxsim::PlcMemory& memory)
{
    for (int address = 0; address < fxsim::addressableBytes; address += wordBytes)
        memory.setValue(address, wordBytes, wordNaming(address));
}

fxsim::Settings badLine(int baud, const char* faults, fxsim::EnquiryMode enquiry)
{
    fxsim::Settings settings;
    settings.timing.baud = baud;
    settings.faults = fxsim::parseFaults(QString::fromLatin1(faults));
    settings.enquiry = enquiry;
    return settings;
}

fxtools::Blocks apart(const QVector<fxtools::RegisterRange>& due)
{
    fxtools::Blocks blocks;
    for (const fxtools::RegisterRange& one : due)
        blocks.append({one});
    return blocks;
}

}  // namespace tool_tests
