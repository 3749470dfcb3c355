// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/links/link.h"

#include "tools/fxsim/plc/error.h"

#include <algorithm>

namespace fxsim {

namespace {

constexpr int reopenMs = 1000;  // between attempts to reopen a lost link

}  // namespace

HostConnection::HostConnection(Link& link, const QByteArray& client, Write write)
    : m_link(link), m_session(link.simulator(), client), m_write(std::move(write))
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &HostConnection::sendDue);
}

void HostConnection::receive(const QByteArray& bytes)
{
    m_session.receive(bytes, m_link.clock().nowUs());
    sendDue();
    if (const std::optional<int> forMs = m_session.takeLinkDrop())  // not now: it ends this object
        QMetaObject::invokeMethod(
            &m_link, [&link = m_link, forMs] { link.drop(*forMs); }, Qt::QueuedConnection);
}

void HostConnection::sendDue()
{
    const qint64 nowUs = m_link.clock().nowUs();
    const QByteArray due = m_session.takeDue(nowUs);
    if (!due.isEmpty())
        m_link.simulator().statistics().charactersLost += m_write(due);
    const qint64 nextUs = m_session.nextDueUs();
    if (nextUs != nothingDue)
        m_timer.start(
            static_cast<int>(std::max<qint64>(0, (nextUs - nowUs + usPerMs - 1) / usPerMs)));
}

Link::Link(Simulator& simulator, const Clock& clock) : m_simulator(simulator), m_clock(clock)
{
    m_return.setSingleShot(true);
    connect(&m_return, &QTimer::timeout, this, &Link::reopen);
}

void Link::drop(int forMs)
{
    if (m_down)
        return;  // it will reopen anyway
    m_down = true;
    const QString gone = name();
    close();
    m_failureReported = false;
    emit message(QString("link down: %1, back in %2 ms").arg(gone).arg(forMs));
    m_return.start(forMs);
}

void Link::reopen()
{
    try {
        open();
        m_down = false;
        emit message(QString("ready on %1").arg(name()));
    } catch (const Error& error) {
        if (!m_failureReported)
            emit message(QString("%1; retrying every second").arg(error.text()));
        m_failureReported = true;
        m_return.start(reopenMs);
    }
}

}  // namespace fxsim
