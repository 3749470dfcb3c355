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

constexpr int emptyLineShare = 8;
constexpr int longestEmptyLineMs = 5;

constexpr int longestTurnMs = 100;
constexpr int longestDrainMs = 2000;        // of a line that is never quiet,
constexpr int longestSecondDrainMs = 500;   // also when it is tried again,
constexpr int longestJunkBytes = 4096;      // and the most bytes
constexpr int longestReplyMs = 5000;        // the longest takes 4.4 s at 300 baud
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
    const qint64 enquiriesAnswered = m_statistics.enquiriesAnswered;
    sendAndReceive(exchange);
    noteSilence(exchange, m_statistics.enquiriesAnswered > enquiriesAnswered);
    const bool isAnswered =
        exchange.verdict == ReplyVerdict::Good || exchange.verdict == ReplyVerdict::Refused;
    m_mayBeDone = (exchange.wasSent && !isAnswered) || (m_repeating && m_mayBeDone);
    exchange.mayBeDone = m_mayBeDone;
    if (exchange.verdict != ReplyVerdict::LinkLost)
        handOver(exchange);
    else
        m_repeating = true;  // the frame stays in flight: it is sent again when the link is back
    exchange.tookUs = elapsedUs() - exchange.startedUs;
    m_statistics.busyUs += exchange.tookUs;
    m_statistics.add(exchange);
    if (onExchange)
        onExchange(exchange);
    return exchange;
}

void ExchangeLoop::abandonRecipe(RecipeDirection direction)
{
    while (m_session.recipeRuns(direction)) {
        m_session.giveUpFrame();
        m_repeating = false;
    }
}

void ExchangeLoop::sendAndReceive(Exchange& exchange)
{
    QByteArray junk;
    const int momentMs =
        m_isQuiet ? static_cast<int>(momentUs(m_timeout.typicalResponseUs()) / 1000) : quietMs();
    const bool mayBeSent = drain(momentMs, junk);
    throwAway(junk);
    exchange.startedUs = elapsedUs();
    if (!mayBeSent) {
        exchange.verdict = isInterrupted() ? ReplyVerdict::Interrupted : ReplyVerdict::Babble;
        return;
    }
    exchange.wasSent = m_link.send(requestBytes(exchange.frame));
    if (!exchange.wasSent) {
        exchange.verdict = ReplyVerdict::LinkLost;
        return;
    }
    const qint64 sentUs = elapsedUs();
    exchange.reply = receive(exchange.frame.replyLength);
    exchange.responseUs = elapsedUs() - sentUs;
    exchange.verdict = judgeReply(exchange.frame, exchange.reply);
    const bool isGood = exchange.verdict == ReplyVerdict::Good;
    if (isTimeout(exchange.verdict) && isInterrupted())
        exchange.verdict = ReplyVerdict::Interrupted;  // before the time-out was over
    else if (const std::optional<int> waitMs = isGood ? waitForAnother(exchange) : quietMs())
        settle(exchange, *waitMs);
    if (exchange.verdict == ReplyVerdict::Late)
        exchange.responseUs = std::max(exchange.responseUs, m_heardUs - sentUs);
    const bool isTaken = exchange.verdict == ReplyVerdict::Good ||
                         (exchange.verdict == ReplyVerdict::Surrounded && m_settings.tolerant);
    if (isTaken)
        m_lastGood = exchange;
    if (isTaken || exchange.verdict == ReplyVerdict::Late)
        m_timeout.answered(exchange.responseUs);
    else if (!m_link.isOpen())  // sending ENQ may be the first to show it
        exchange.verdict = ReplyVerdict::LinkLost;
}

// Prepares the line for the next frame, and judges again with all that came.
void ExchangeLoop::settle(Exchange& exchange, int forQuietMs)
{
    const bool isRefused = exchange.verdict == ReplyVerdict::Refused && exchange.reply.size() == 1;
    if (isRefused || !m_link.isOpen())
        return;
    if (!drain(forQuietMs, exchange.thrownAway)) {
        exchange.verdict = isInterrupted() ? ReplyVerdict::Interrupted : ReplyVerdict::Babble;
        return;
    }
    const bool wasTimeout = isTimeout(exchange.verdict);
    if (wasTimeout) {
        m_timeout.timedOut();
        ask(exchange.thrownAway);
    }
    exchange.verdict = judgeReply(exchange.frame, exchange.reply + exchange.thrownAway);
    const bool isRight =
        exchange.verdict == ReplyVerdict::Good || exchange.verdict == ReplyVerdict::Surrounded;
    if (wasTimeout && isRight)
        exchange.verdict = ReplyVerdict::Late;
}

void ExchangeLoop::noteSilence(const Exchange& exchange, bool enquiryAnswered)
{
    const bool isSilent =
        exchange.verdict == ReplyVerdict::Silence || exchange.verdict == ReplyVerdict::Babble;
    if (exchange.verdict == ReplyVerdict::Babble && onBabble) {
        onBabble(exchange.reply + exchange.thrownAway);
        onBabble = nullptr;
    }
    m_unansweredInARow = isSilent && !enquiryAnswered ? m_unansweredInARow + 1 : 0;
}

// The reply before, once more: it may be a second copy of it. Then the PLC's own reply follows, at
// the time that it usually takes or right behind the copy.
std::optional<int> ExchangeLoop::waitForAnother(const Exchange& exchange) const
{
    if (exchange.reply != m_lastGood.reply ||
        requestBytes(exchange.frame) == requestBytes(m_lastGood.frame))
        return std::nullopt;
    const qint64 momentAfterUs = momentUs(m_lastGood.responseUs);
    const bool isEarly = exchange.responseUs < m_lastGood.responseUs - momentAfterUs;
    return static_cast<int>((isEarly ? m_lastGood.responseUs : momentAfterUs) / 1000);
}

void ExchangeLoop::handOver(Exchange& exchange)
{
    if (exchange.verdict == ReplyVerdict::Surrounded && m_settings.tolerant)
        exchange.handed = rightReplyIn(exchange.frame, exchange.reply + exchange.thrownAway);
    else if (exchange.reply.size() == exchange.frame.replyLength && exchange.thrownAway.isEmpty() &&
             exchange.verdict != ReplyVerdict::Interrupted)
        exchange.handed = exchange.reply;
    else
        exchange.handed = QByteArray(exchange.reply.size(), nak);
    const int result = m_session.library().dealRcvFrame(exchange.handed, exchange.errorText);
    exchange.answer = static_cast<DriverAnswer>(result);
    m_repeating = exchange.answer == DriverAnswer::Repeat;
}

// Ends early at a NAK, with which no good reply begins, and when a reply breaks off.
QByteArray ExchangeLoop::receive(int byteCount)
{
    QByteArray reply = listen(m_timeout.milliseconds());
    const qint64 endUs = elapsedUs() + 1000LL * longestReplyMs;
    bool goesOn = !reply.isEmpty();
    while (goesOn && reply.size() < byteCount && reply.front() != nak && !isInterrupted()) {
        const QByteArray more = listen(betweenBytesMs());
        reply += more;
        goesOn = !more.isEmpty() && elapsedUs() < endUs;
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
    if (!bytes.isEmpty() && bytes != QByteArray(1, ack))
        m_heardUs = elapsedUs();
    return bytes;
}

// Whether the line is quiet at last. What comes is followed for two seconds.
bool ExchangeLoop::drain(int forQuietMs, QByteArray& junk)
{
    const int longestMs = m_isQuiet ? longestDrainMs : longestSecondDrainMs;
    const int mostBytes = junk.size() + longestJunkBytes;
    QByteArray more = listen(forQuietMs);
    const qint64 endUs = elapsedUs() + 1000 * qint64(longestMs);
    while (!more.isEmpty() && elapsedUs() < endUs && junk.size() < mostBytes && !isInterrupted()) {
        junk += more;
        more = listen(std::min(forQuietMs, quietMs()));
    }
    junk += more;
    m_isQuiet = more.isEmpty() && !isInterrupted();
    return m_isQuiet;
}

QByteArray ExchangeLoop::overhear(int timeMs)
{
    QByteArray heard;
    const qint64 endUs = elapsedUs() + 1000 * qint64(timeMs);
    for (qint64 nowUs = elapsedUs(); nowUs < endUs && !isInterrupted() && m_link.isOpen();
         nowUs = elapsedUs())
        heard += listen(static_cast<int>((endUs - nowUs + 999) / 1000)).left(longestJunkBytes);
    throwAway(heard);
    return heard;
}

bool ExchangeLoop::resynchronise()
{
    QByteArray junk;
    const bool answered = ask(junk);
    throwAway(junk);
    return answered;
}

bool ExchangeLoop::ask(QByteArray& junk)
{
    // A silent PLC may have been off, and may answer no frame before an ENQ.
    const bool worthAsking =
        m_enquiryWasAnswered || hasGoneSilent() || m_enquiriesUnanswered < enquiriesBeforeGivingUp;
    const bool answered = worthAsking && enquire(junk);
    // Where ENQ is not answered, or not in order, only waiting clears the line.
    drain(m_timeout.milliseconds(), junk);
    return answered;
}

// A late reply may come first; a data frame contains no ACK.
bool ExchangeLoop::enquire(QByteArray& junk)
{
    ++m_statistics.enquiriesSent;
    if (!m_link.send(QByteArray(1, enq)))
        return false;
    QByteArray late;
    const qint64 endUs =
        elapsedUs() + 1000 * qint64(std::max(longestDrainMs, m_timeout.milliseconds()));
    QByteArray more = listen(m_timeout.milliseconds());
    while (!more.isEmpty() && !more.contains(ack) && elapsedUs() < endUs && !isInterrupted()) {
        late += more;
        more = listen(m_timeout.milliseconds());
    }
    m_isQuiet = more.isEmpty() || more.contains(ack);
    late += more;
    const int acknowledged = late.lastIndexOf(ack);
    const bool answered = acknowledged >= 0;
    junk += answered ? late.remove(acknowledged, 1) : late;
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

// How long the line must be empty before a frame: a second copy of a reply usually follows within a
// small part of a response time.
qint64 ExchangeLoop::momentUs(qint64 responseUs) const
{
    return std::min<qint64>(responseUs / emptyLineShare, 1000LL * longestEmptyLineMs);
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
