// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See connection.h.

#include "host/commands/connection.h"

#include "host/addresses.h"
#include "host/interrupt.h"
#include "host/link_address.h"

#include <QRandomGenerator>
#include <QThread>

#include <algorithm>
#include <iostream>

namespace fxhost {

namespace {

constexpr int shortestPauseMs = 100;
constexpr int longestPauseMs = 5000;
constexpr int napMs = 20;  // how soon an interrupt is noticed

QString linkText(const CommonOptions& common, const QString& linkUnlessSaid)
{
    QString text = common.link.empty() ? linkUnlessSaid : QString::fromStdString(common.link);
    QStringList settings;
    if (common.baud > 0)
        settings += QStringLiteral("baud=%1").arg(common.baud);
    if (!common.line.empty())
        settings += QStringLiteral("line=") + QString::fromStdString(common.line);
    if (settings.isEmpty())
        return text;
    return text + (text.contains('?') ? '&' : '?') + settings.join('&');
}

LoopSettings loopSettings(const CommonOptions& common)
{
    LoopSettings settings;
    if (common.timeoutMs > 0)
        settings.timeout = TimeoutLimits::fixed(common.timeoutMs);
    return settings;
}

void pauseFor(int timeMs)
{
    for (int left = timeMs; left > 0 && !interrupted(); left -= napMs)
        QThread::msleep(napMs);
}

}  // namespace

Connection::Connection(const CommonOptions& common, const QString& linkUnlessSaid)
    : m_library(QString::fromStdString(common.library)), m_catalogue(m_library),
      m_link(makeLink(linkText(common, linkUnlessSaid)))
{
    m_link->open();
    m_session = std::make_unique<DriverSession>(
        m_library, SessionSettings{common.retries + 1, common.wordsPerFrame});
    m_loop = std::make_unique<ExchangeLoop>(*m_session, *m_link, loopSettings(common));
}

QVector<RegisterRange> Connection::ranges(const std::vector<std::string>& addresses) const
{
    QVector<RegisterRange> ranges;
    for (const std::string& address : addresses)
        ranges.append(parseAddress(QString::fromStdString(address), m_catalogue, m_library));
    return ranges;
}

bool Connection::reconnect()
{
    complain(m_link->name() + QStringLiteral(": the link was lost"));
    for (int pauseMs = shortestPauseMs; !interrupted();
         pauseMs = std::min(2 * pauseMs, longestPauseMs)) {
        // Jitter, so that many hosts do not come back in the same moment.
        pauseFor(pauseMs / 2 + QRandomGenerator::global()->bounded(pauseMs));
        try {
            m_link->open();
        } catch (const LinkError&) {
            continue;  // one line a change of state, not one a try
        }
        m_loop->resynchronise();
        ++m_loop->statistics().reconnects;
        complain(m_link->name() + QStringLiteral(": the link is back"));
        return true;
    }
    return false;
}

AddressServices::AddressServices(const CommonOptions& common)
    : library(QString::fromStdString(common.library)), catalogue(library)
{}

RegisterRange AddressServices::parse(const std::string& address) const
{
    return parseAddress(QString::fromStdString(address), catalogue, library);
}

ExitCode exitCodeOf(ReplyVerdict verdict)
{
    switch (verdict) {
    case ReplyVerdict::Good:
        return ExitCode::Good;
    case ReplyVerdict::Silence:
    case ReplyVerdict::LinkLost:
    case ReplyVerdict::Late:
        return ExitCode::Silence;
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

void complain(const QString& text)
{
    std::cerr << "fxhost: " << text.toStdString() << std::endl;
}

}  // namespace fxhost
