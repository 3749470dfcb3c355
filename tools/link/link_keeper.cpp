// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/link/link_keeper.h"

#include "tools/link/interrupt.h"

#include <QRandomGenerator>

#include <algorithm>

namespace fxtools {

namespace {

constexpr int usualPatienceS = 30;
constexpr int shortestPauseMs = 100;
constexpr int longestPauseMs = 700;  // jittered up to a second: as soon as a user looks up

// Jitter, so that many hosts do not reconnect at the same moment.
int jittered(int pauseMs)
{
    return pauseMs / 2 + QRandomGenerator::global()->bounded(pauseMs);
}

}  // namespace

LinkKeeper::LinkKeeper(Link& link, std::optional<int> patienceS)
    : isInterrupted(interrupted),
      sleeps([this](qint64 timeMs) { return sleepUnlessInterrupted(timeMs, isInterrupted); }),
      m_link(link), m_givenS(patienceS), m_patienceS(patienceS.value_or(usualPatienceS)),
      m_pauseMs(shortestPauseMs)
{
    m_gone.start();
}

void LinkKeeper::waitWithoutEnd()
{
    m_patienceS = m_givenS;
}

// If a link cannot be opened at the start, its name may be wrong: only the user knows whether to
// retry.
void LinkKeeper::openFirst()
{
    try {
        m_link.open();
        return;
    } catch (const Failure& failure) {
        if (m_givenS.value_or(0) == 0)
            throw;
        onState(failure.text() + "; retrying");
    }
    const Awaited awaited = await();
    if (awaited == Awaited::GivenUp) {
        throw Failure(
            ExitCode::LinkNotOpened,
            QString("%1: could not open the link within %2 s").arg(m_link.name()).arg(*m_givenS));
    }
    if (awaited == Awaited::Interrupted)
        throw Failure(ExitCode::Interrupted,
                      m_link.name() + ": interrupted before the link opened");
    onState("the link is open");
}

bool LinkKeeper::reopen(qint64 answers)
{
    if (answers != m_answersUntilLoss) {
        m_answersUntilLoss = answers;
        m_gone.start();
        m_pauseMs = shortestPauseMs;
    }
    onState("the link was lost");
    const Awaited awaited = await();
    if (awaited == Awaited::GivenUp && m_patienceS > 0)
        onState(QString("the link did not come back within %1 s").arg(*m_patienceS));
    else if (awaited == Awaited::Open)
        onState("the link is back");
    return awaited == Awaited::Open;
}

LinkKeeper::Awaited LinkKeeper::await()
{
    while (patienceLeftMs() > 0) {
        if (!sleeps(std::min<qint64>(jittered(m_pauseMs), patienceLeftMs())))
            return Awaited::Interrupted;
        m_pauseMs = std::min(2 * m_pauseMs, longestPauseMs);
        if (opens())
            return Awaited::Open;
    }
    return Awaited::GivenUp;
}

bool LinkKeeper::opens()
{
    try {
        m_link.open();
        return true;
    } catch (const Failure&) {
        return false;  // changes of state are reported, not attempts
    }
}

qint64 LinkKeeper::patienceLeftMs() const
{
    return m_patienceS ? qint64(1000) * *m_patienceS - m_gone.elapsed() : longestPauseMs;
}

}  // namespace fxtools
