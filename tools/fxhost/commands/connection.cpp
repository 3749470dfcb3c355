// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See connection.h.

#include "tools/fxhost/commands/connection.h"

#include "tools/fxhost/link_address.h"
#include "tools/library/addresses.h"
#include "tools/link/interrupt.h"

#include <QRandomGenerator>

#include <algorithm>

namespace fxtools {

namespace {

constexpr int boundedS = 30;
constexpr int endless = -1;
constexpr int shortestPauseMs = 100;
constexpr int longestPauseMs = 5000;

// The link with what the options say about it in front of its own settings: the first one counts.
QString linkText(const CommonOptions& common, const QString& linkUnlessSaid)
{
    QString text = common.link.empty() ? linkUnlessSaid : QString::fromStdString(common.link);
    QStringList settings;
    if (common.baud > 0)
        settings += QStringLiteral("baud=%1").arg(common.baud);
    if (!common.line.empty())
        settings += QStringLiteral("line=") + QString::fromStdString(common.line);
    if (!common.parity.empty())
        settings += QStringLiteral("parity=") + QString::fromStdString(common.parity);
    if (common.port > 0)
        settings += QStringLiteral("port=%1").arg(common.port);
    if (text.contains('?'))
        settings += text.section('?', 1);
    if (settings.isEmpty())
        return text;
    return text.section('?', 0, 0) + '?' + settings.join('&');
}

LoopSettings loopSettings(const CommonOptions& common)
{
    LoopSettings settings;
    settings.isInterrupted = interrupted;
    if (common.timeoutMs > 0)
        settings.timeout = TimeoutLimits::fixed(common.timeoutMs);
    return settings;
}

// Jitter, so that many hosts do not come back in the same moment.
int jittered(int pauseMs)
{
    return pauseMs / 2 + QRandomGenerator::global()->bounded(pauseMs);
}

}  // namespace

Connection::Connection(const CommonOptions& common, const QString& linkUnlessSaid)
    : m_library(QString::fromStdString(common.library)), m_catalogue(m_library),
      m_link(makeLink(linkText(common, linkUnlessSaid))),
      m_reconnectS(common.reconnectS < 0 ? boundedS : common.reconnectS),
      m_reconnectIsGiven(common.reconnectS >= 0), m_timestamps(common.output.timestamps)
{
    m_session = std::make_unique<DriverSession>(
        m_library, SessionSettings{common.retries + 1, common.wordsPerFrame});
    m_loop = std::make_unique<ExchangeLoop>(*m_session, *m_link, loopSettings(common));
    m_loop->onLinkLost = [this] { return reconnect(); };
    openFirst();
}

// A link that is not there is more often one with a wrong name than one to wait for: that is for
// the user to say.
void Connection::openFirst()
{
    try {
        m_link->open();
    } catch (const Failure& failure) {
        if (!m_reconnectIsGiven || m_reconnectS == 0)
            throw;
        sayState(failure.text() + "; it is awaited");
        m_pauseMs = shortestPauseMs;
        if (awaitLink())
            sayState(QStringLiteral("the link is there"));
        else if (!interrupted())
            throw Failure(ExitCode::LinkNotOpened,
                          QStringLiteral("%1: the link did not come within %2 s")
                              .arg(m_link->name())
                              .arg(m_reconnectS));
    }
}

void Connection::waitForLinkWithoutEnd()
{
    if (!m_reconnectIsGiven)
        m_reconnectS = endless;
}

QVector<RegisterRange> Connection::ranges(const std::vector<std::string>& addresses) const
{
    QVector<RegisterRange> ranges;
    for (const std::string& address : addresses)
        ranges.append(parseAddress(QString::fromStdString(address), m_catalogue));
    return ranges;
}

// A link that comes back and breaks again before anything was answered has not been back: pauses
// and patience go on where they were.
void Connection::noteLoss()
{
    const qint64 answered = m_loop->statistics().total().accepted;
    if (answered == m_answeredUntilLoss)
        return;
    m_answeredUntilLoss = answered;
    m_lostSinceUs = m_loop->elapsedUs();
    m_pauseMs = shortestPauseMs;
}

qint64 Connection::patienceLeftMs() const
{
    if (m_reconnectS == endless)
        return longestPauseMs;
    const qint64 goneMs = (m_loop->elapsedUs() - m_lostSinceUs) / 1000;
    return qint64(1000) * m_reconnectS - goneMs;
}

bool Connection::reconnect()
{
    noteLoss();
    sayState(QStringLiteral("the link was lost"));
    if (awaitLink()) {
        m_loop->resynchronise();
        ++m_loop->statistics().reconnects;
        sayState(QStringLiteral("the link is back"));
        return true;
    }
    if (!interrupted() && m_reconnectS > 0)
        sayState(QStringLiteral("the link did not come back within %1 s").arg(m_reconnectS));
    return false;
}

bool Connection::awaitLink()
{
    while (!interrupted() && patienceLeftMs() > 0) {
        sleepUnlessInterrupted(std::min<qint64>(jittered(m_pauseMs), patienceLeftMs()));
        m_pauseMs = std::min(2 * m_pauseMs, longestPauseMs);
        if (linkOpens())
            return true;
    }
    return false;
}

bool Connection::linkOpens()
{
    try {
        m_link->open();
        return true;
    } catch (const Failure&) {
        return false;  // one line a change of state, not one a try
    }
}

void Connection::sayState(const QString& text) const
{
    const QString time = m_timestamps ? timestamp() + "  " : QString();
    complain(time + m_link->name() + ": " + text);
}

AddressServices::AddressServices(const CommonOptions& common)
    : library(QString::fromStdString(common.library)), catalogue(library)
{}

RegisterRange AddressServices::parse(const std::string& address) const
{
    return parseAddress(QString::fromStdString(address), catalogue);
}

ExitCode exitCodeOf(ReplyVerdict verdict)
{
    switch (verdict) {
    case ReplyVerdict::Good:
        return ExitCode::Good;
    case ReplyVerdict::Silence:
    case ReplyVerdict::Late:
        return ExitCode::Silence;
    case ReplyVerdict::LinkLost:
        return ExitCode::LinkNotOpened;
    case ReplyVerdict::Interrupted:
        return ExitCode::Interrupted;
    case ReplyVerdict::Refused:
        return ExitCode::Refused;
    case ReplyVerdict::Incomplete:
    case ReplyVerdict::TooLong:
    case ReplyVerdict::HighBits:
    case ReplyVerdict::Echo:
    case ReplyVerdict::NotAFrame:
    case ReplyVerdict::WrongSum:
        return ExitCode::Damaged;
    }
    return ExitCode::SomeFailed;
}

ExitCode exitCodeOf(const Statistics& statistics)
{
    const KindCounts total = statistics.total();
    if (total.failed == 0)
        return ExitCode::Good;
    if (statistics.plcHasAnswered())
        return ExitCode::SomeFailed;
    auto worst = ReplyVerdict::Silence;
    for (const ReplyVerdict verdict : allVerdicts()) {
        if (statistics.of(verdict) > statistics.of(worst))
            worst = verdict;
    }
    return exitCodeOf(worst);
}

}  // namespace fxtools
