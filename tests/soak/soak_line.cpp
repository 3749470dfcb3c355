// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "soak_line.h"

#include <algorithm>

namespace fxsoak {

namespace {

constexpr qint64 usPerMs = 1000;

}  // namespace

SoakLine::SoakLine(const fxsim::Settings& settings) : m_plc(settings, nullptr, 0)
{
    open();
}

void SoakLine::open()
{
    m_nowUs = std::max(m_nowUs, m_backAtUs);
    m_session.emplace(m_plc, "soak");
}

bool SoakLine::send(const QByteArray& bytes)
{
    if (!isOpen())
        return false;
    m_session->receive(bytes, m_nowUs);
    return true;
}

QByteArray SoakLine::receive(int timeoutMs)
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
    const bool comesInTime = dueUs != fxsim::nothingDue && dueUs <= deadlineUs;
    m_nowUs = comesInTime ? std::max(dueUs, m_nowUs) : deadlineUs;
    return m_session->takeDue(m_nowUs);
}

}  // namespace fxsoak
