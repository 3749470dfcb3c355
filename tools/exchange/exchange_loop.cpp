// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/exchange_loop.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace fxtools {

namespace {

// A line is quiet when nothing has come for four usual response times, within these limits.
constexpr int shortestQuietMs = 5;
constexpr int longestQuietMs = 250;
constexpr int quietResponses = 4;

// A second copy of a reply follows within a small part of a usual response time.
constexpr int emptyLineShare = 8;
constexpr int longestEmptyLineMs = 5;

constexpr int longestTurnMs = 100;
constexpr int longestJunkBytes = 4096;      // most bytes drained from a line that never stops
constexpr int enquiriesBeforeGivingUp = 3;  // some PLCs do not answer ENQ

bool isTimeout(ReplyVerdict verdict)
{
    return verdict == ReplyVerdict::Silence || verdict == ReplyVerdict::Incomplete;
}

}  // namespace

ExchangeLoop::ExchangeLoop(DriverSession& session, Link& link, const LoopSettings& settings)
    : m_session(session), m_link(link), m_settings(settings), m_timeout(settings.timeout)
{
    if (!m_settings.isInterrupted)
        m_settings.isInterrupted = [] { return false; };
    if (m_settings.clockUs)
        return;
    QElapsedTimer clock;
    clock.start();
    m_settings.clockUs = [clock] { return clock.nsecsElapsed() / 1000; };
}

std::optional<Exchange> ExchangeLoop::step()
{
    Exchange exchange;
    if (m_session.library().getSendFrame(&exchange.frame) != fxFrameToSend)
        return std::nullopt;
    if (onFirstFrame)
        std::exchange(onFirstFrame, nullptr)();
    if (!m_repeating)
        m_kind = m_session.kindOf(exchange.frame);
    exchange.kind = m_kind;
    sendAndReceive(exchange);
    const bool isAnswered =
        exchange.verdict == ReplyVerdict::Good || exchange.verdict == ReplyVerdict::Refused;
    m_mayBeDone = !isAnswered || (m_repeating && m_mayBeDone);
    exchange.mayBeDone = m_mayBeDone;
    if (exchange.verdict != ReplyVerdict::LinkLost)
        handOver(exchange);
    else
        m_repeating = true;  // the frame stays in flight: it is sent again when the link is back
    m_statistics.busyUs += elapsedUs() - exchange.startedUs;
    m_statistics.add(exchange);
    if (onExchange)
        onExchange(exchange);
    return exchange;
}

void ExchangeLoop::sendAndReceive(Exchange& exchange)
{
    clearLine();
    exchange.startedUs = elapsedUs();
    if (!m_link.send(requestBytes(exchange.frame))) {
        exchange.verdict = ReplyVerdict::LinkLost;
        return;
    }
    const qint64 sentUs = elapsedUs();
    exchange.reply = receive(exchange.frame.replyLength);
    exchange.responseUs = elapsedUs() - sentUs;
    exchange.verdict = judgeReply(exchange.frame, exchange.reply);
    if (exchange.verdict == ReplyVerdict::Good) {
        m_timeout.answered(exchange.responseUs);
        return;
    }
    if (isTimeout(exchange.verdict) && isInterrupted())
        exchange.verdict = ReplyVerdict::Interrupted;  // before the time-out was over
    else if (m_link.isOpen())
        settle(exchange);
    if (!m_link.isOpen())  // sending ENQ may be the first to show it
        exchange.verdict = ReplyVerdict::LinkLost;
}

// Prepares the line for the next frame, and judges again with all that came.
void ExchangeLoop::settle(Exchange& exchange)
{
    if (exchange.verdict == ReplyVerdict::Refused && exchange.reply.size() == 1)
        return;
    exchange.thrownAway = drain(quietMs());
    if (isTimeout(exchange.verdict)) {
        m_timeout.timedOut();
        resynchronise();
    }
    const ReplyVerdict onAll = judgeReply(exchange.frame, exchange.reply + exchange.thrownAway);
    exchange.verdict = onAll == ReplyVerdict::Good ? ReplyVerdict::Late : onAll;
}

void ExchangeLoop::handOver(Exchange& exchange)
{
    const bool exactLength = exchange.reply.size() == exchange.frame.replyLength;
    exchange.handed = exactLength ? exchange.reply : QByteArray(exchange.reply.size(), nak);
    const int result = m_session.library().dealRcvFrame(exchange.handed, exchange.errorText);
    exchange.answer = static_cast<DriverAnswer>(result);
    m_repeating = exchange.answer == DriverAnswer::Repeat;
}

// Ends early at a NAK, with which no good reply begins, and when a reply breaks off.
QByteArray ExchangeLoop::receive(int byteCount)
{
    QByteArray reply;
    while (reply.size() < byteCount) {
        const int waitMs = reply.isEmpty() ? m_timeout.milliseconds() : betweenBytesMs();
        const QByteArray more = listen(waitMs);
        reply += more;
        if (more.isEmpty() || reply.front() == nak)
            break;
    }
    return reply;
}

int ExchangeLoop::betweenBytesMs() const
{
    return std::min(m_settings.betweenBytesMs, m_timeout.milliseconds());
}

// In short turns, so that an interrupt does not have to wait for a long time-out.
QByteArray ExchangeLoop::listen(int timeoutMs)
{
    QByteArray bytes = m_link.receive(std::min(timeoutMs, longestTurnMs));
    for (int leftMs = timeoutMs - longestTurnMs;
         bytes.isEmpty() && leftMs > 0 && m_link.isOpen() && !isInterrupted();
         leftMs -= longestTurnMs)
        bytes = m_link.receive(std::min(leftMs, longestTurnMs));
    return bytes;
}

QByteArray ExchangeLoop::drain(int forQuietMs)
{
    QByteArray junk;
    while (junk.size() < longestJunkBytes) {
        const QByteArray more = listen(forQuietMs);
        if (more.isEmpty())
            break;
        junk += more;
    }
    return junk;
}

bool ExchangeLoop::resynchronise()
{
    const bool worthAsking =
        m_enquiryWasAnswered || m_enquiriesUnanswered < enquiriesBeforeGivingUp;
    const bool answered = worthAsking && enquire();
    // Where ENQ is not answered, or not in order, only waiting clears the line.
    throwAway(drain(m_timeout.milliseconds()));
    return answered;
}

// A late reply may come first; a data frame contains no ACK.
bool ExchangeLoop::enquire()
{
    ++m_statistics.enquiriesSent;
    if (!m_link.send(QByteArray(1, enq)))
        return false;
    QByteArray late;
    while (late.size() < longestJunkBytes) {
        const QByteArray more = listen(m_timeout.milliseconds());
        late += more;
        if (more.isEmpty() || more.contains(ack))
            break;
    }
    const bool answered = late.contains(ack);
    throwAway(late.replace(QByteArray(1, ack), QByteArray()));
    m_statistics.enquiriesAnswered += answered;
    m_enquiriesUnanswered += !answered;
    m_enquiryWasAnswered |= answered;
    return answered;
}

void ExchangeLoop::throwAway(const QByteArray& bytes)
{
    m_statistics.bytesReceived += bytes.size();
    m_statistics.bytesThrownAway += bytes.size();
}

void ExchangeLoop::clearLine()
{
    const qint64 shareMs = m_timeout.typicalResponseUs() / 1000 / emptyLineShare;
    const int waitMs = static_cast<int>(std::min<qint64>(shareMs, longestEmptyLineMs));
    throwAway(drain(waitMs));
}

int ExchangeLoop::quietMs() const
{
    const qint64 typicalUs = m_timeout.typicalResponseUs();
    if (typicalUs == 0)
        return longestQuietMs;
    const qint64 wantedMs = typicalUs / 1000 * quietResponses;
    return static_cast<int>(std::clamp<qint64>(wantedMs, shortestQuietMs, longestQuietMs));
}

}  // namespace fxtools
