// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/simulated/sim_link.h"

#include <QThread>

#include <algorithm>

namespace fxtools {

SimLink::SimLink(const fxsim::Settings& settings)
    : m_plc(settings, std::make_unique<fxsim::SampleProgram>(), m_clock.nowUs()),
      m_control(m_plc, {[] {}, [](int) {}, [this] { return m_clock.nowUs(); }})
{}

QString SimLink::name() const
{
    return "sim:";
}

void SimLink::open()
{
    m_session = std::make_unique<fxsim::Session>(m_plc, "inside");
}

bool SimLink::send(const QByteArray& bytes)
{
    if (!isOpen())
        return false;
    m_plc.advance(m_clock.nowUs());
    m_session->receive(bytes, m_clock.nowUs());
    return true;
}

QByteArray SimLink::receive(int timeoutMs)
{
    if (!isOpen())
        return {};
    const qint64 deadlineUs = m_clock.nowUs() + qint64(1000) * timeoutMs;
    waitForBytes(deadlineUs);
    m_plc.advance(m_clock.nowUs());
    QByteArray bytes = m_session->takeDue(m_clock.nowUs());
    if (m_session->takeLinkDrop())
        m_session.reset();
    return bytes;
}

void SimLink::waitForBytes(qint64 untilUs)
{
    const qint64 dueUs = m_session->nextDueUs();
    const qint64 wakeUs = dueUs == fxsim::nothingDue ? untilUs : std::min(dueUs, untilUs);
    const qint64 waitUs = wakeUs - m_clock.nowUs();
    if (waitUs > 0)
        QThread::usleep(static_cast<unsigned long>(waitUs));
}

void SimLink::run(const QString& command)
{
    const QByteArray answer = m_control.run(command);
    if (answer.startsWith("error: "))
        throw Failure(ExitCode::LinkNotOpened, QString::fromUtf8(answer.trimmed()));
}

}  // namespace fxtools
