// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/exchange_loop.h"

#include <algorithm>
#include <utility>

namespace fxtools {

namespace {

bool isTimeout(ReplyVerdict verdict)
{
    return verdict == ReplyVerdict::Silence || verdict == ReplyVerdict::Incomplete;
}

bool isPlainNak(const Exchange& exchange)
{
    return exchange.verdict == ReplyVerdict::Refused && exchange.reply.size() == 1;
}

// At most: the PLC's own time is in it.
qint64 characterUs(const Exchange& answer)
{
    const int characters = requestBytes(answer.frame).size() + answer.reply.size();
    return answer.responseUs / std::max(characters, 1);
}

// Where more came than a NAK, the NAK may be another's.
bool isSure(const Exchange& exchange)
{
    return exchange.verdict == ReplyVerdict::Good ||
           (isPlainNak(exchange) && exchange.thrownAway.isEmpty());
}

}  // namespace

ExchangeLoop::ExchangeLoop(DriverSession& session, Link& link, const LoopSettings& settings)
    : m_session(session), m_line(link, settings, m_statistics), m_isTolerant(settings.tolerant)
{}

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
    send(exchange);
    if (exchange.wasSent)
        receive(exchange);
    noteSilence(exchange, m_statistics.enquiriesAnswered > enquiriesAnswered);
    m_mayBeDone = (exchange.wasSent && !isSure(exchange)) || (m_repeating && m_mayBeDone);
    exchange.mayBeDone = m_mayBeDone;
    if (exchange.verdict != ReplyVerdict::LinkLost)
        handOver(exchange);
    else
        noteLoss();
    exchange.tookUs = elapsedUs() - exchange.startedUs;
    m_statistics.busyUs += exchange.tookUs;
    m_statistics.add(exchange);
    if (onExchange)
        onExchange(exchange);
    return exchange;
}

// The frame stays in flight: it is sent again when the link is back.
void ExchangeLoop::noteLoss()
{
    m_repeating = true;
    m_isUnsure = true;
    m_line.forgetAcks();
}

void ExchangeLoop::abandonRecipe(RecipeDirection direction)
{
    while (m_session.recipeRuns(direction)) {
        m_session.giveUpFrame();
        m_repeating = false;
    }
}

void ExchangeLoop::forgetEverything()
{
    m_session.forgetValues();
    m_repeating = false;
}

void ExchangeLoop::send(Exchange& exchange)
{
    if (m_isUnsure)
        greet();
    const QByteArray request = requestBytes(exchange.frame);
    if (m_lastRequest.isEmpty() && exchange.frame.isRead == 0)
        m_waitBeforeOtherMs = m_line.quietMs();
    const bool repeatsRead = exchange.frame.isRead != 0 && request == m_lastRequest;
    QByteArray junk;
    const int waitMs = repeatsRead ? 0 : std::exchange(m_waitBeforeOtherMs, 0);
    bool mayBeSent = waitMs > 0 ? m_line.drain(waitMs, junk)
                                : m_line.drainBeforeFrame(characterUs(m_lastAnswer), junk);
    if (mayBeSent && m_line.owesAcks() && !repeatsRead) {
        m_line.outwaitAcks(junk);
        mayBeSent = m_line.drain(m_line.quietMs(), junk);
    }
    exchange.startedUs = elapsedUs();
    if (mayBeSent) {
        throwAway(junk);
    } else {
        exchange.thrownAway = junk;
        exchange.verdict = isInterrupted() ? ReplyVerdict::Interrupted : ReplyVerdict::Babble;
        return;
    }
    m_repeatsWhileOwed = repeatsRead && m_line.owesAcks();
    exchange.wasSent = m_line.send(request);
    if (exchange.wasSent)
        m_lastRequest = request;
    else
        exchange.verdict = ReplyVerdict::LinkLost;
}

void ExchangeLoop::receive(Exchange& exchange)
{
    const qint64 sentUs = elapsedUs();
    exchange.reply = m_line.receive(exchange.frame.replyLength);
    exchange.responseUs = elapsedUs() - sentUs;
    exchange.verdict = judgeReply(exchange.frame, exchange.reply);
    const qint64 beganAfterUs = m_line.beganUs() - sentUs;
    const bool isStray = exchange.verdict != ReplyVerdict::Silence &&
                         exchange.verdict != ReplyVerdict::Echo && m_line.isTooSoon(beganAfterUs);
    if (isTimeout(exchange.verdict) && isInterrupted())
        exchange.verdict = ReplyVerdict::Interrupted;  // before the time-out was over
    else if (isStray)
        discardStray(exchange);
    else if (m_repeatsWhileOwed && !isTimeout(exchange.verdict))
        confirm(exchange);
    else if (const std::optional<int> waitMs = waitAfter(exchange))
        settle(exchange, *waitMs);
    if (exchange.verdict == ReplyVerdict::Late)
        exchange.responseUs = std::max(exchange.responseUs, m_line.heardUs() - sentUs);
    if (exchange.verdict == ReplyVerdict::Good && exchange.frame.isRead != 0)
        m_line.noteBeginning(beganAfterUs);
    const bool isTaken = exchange.verdict == ReplyVerdict::Good ||
                         (exchange.verdict == ReplyVerdict::Surrounded && m_isTolerant);
    if (isTaken || exchange.verdict == ReplyVerdict::Refused)
        m_lastAnswer = exchange;
    if (isTaken || isSure(exchange))
        m_isUnsure = false;
    if (!isTaken && !m_line.isOpen())  // sending ENQ may be the first to show it
        exchange.verdict = ReplyVerdict::LinkLost;
    else if (isTaken || exchange.verdict == ReplyVerdict::Late)
        m_line.timeout().answered(exchange.responseUs);
}

// Prepares the line for the next frame, and judges again with all that came.
void ExchangeLoop::settle(Exchange& exchange, int forQuietMs)
{
    const bool isQuiet = m_line.drain(forQuietMs, exchange.thrownAway);
    if (!m_line.isOpen()) {
        exchange.verdict = ReplyVerdict::LinkLost;  // what would have followed is not known
        return;
    }
    if (!isQuiet) {
        exchange.verdict = isInterrupted() ? ReplyVerdict::Interrupted : ReplyVerdict::Babble;
        return;
    }
    const bool wasTimeout = isTimeout(exchange.verdict);
    if (wasTimeout) {
        m_line.timeout().timedOut();
        m_line.ask(exchange.thrownAway, hasGoneSilent());
    }
    exchange.verdict = judgeReply(exchange.frame, exchange.reply + exchange.thrownAway);
    const bool isRight =
        exchange.verdict == ReplyVerdict::Good || exchange.verdict == ReplyVerdict::Surrounded;
    if (wasTimeout && isRight)
        exchange.verdict = ReplyVerdict::Late;
}

// The PLC's own reply is still to come, or lost.
void ExchangeLoop::discardStray(Exchange& exchange)
{
    if (exchange.verdict == ReplyVerdict::Good || exchange.verdict == ReplyVerdict::Refused) {
        std::swap(exchange.thrownAway, exchange.reply);
        exchange.verdict = ReplyVerdict::Late;
    }
    m_line.noteStray();
    if (m_line.drain(m_line.quietMs(), exchange.thrownAway))
        m_line.ask(exchange.thrownAway, hasGoneSilent());
    else
        exchange.verdict = isInterrupted() ? ReplyVerdict::Interrupted : ReplyVerdict::Babble;
}

// The reply may be the one to an earlier copy of the same request. Then another follows; the ACK of
// a new ENQ is the end of them.
void ExchangeLoop::confirm(Exchange& exchange)
{
    m_line.askAndOutwait(exchange.thrownAway);
    if (!m_line.isOpen())
        exchange.verdict = ReplyVerdict::LinkLost;
    else if (isInterrupted())
        exchange.verdict = ReplyVerdict::Interrupted;
    else
        exchange.verdict = judgeReply(exchange.frame, exchange.reply + exchange.thrownAway);
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

// How long to listen for more, if at all. The answer before, once more, may be its second copy:
// then the PLC's own answer follows, at the time that it usually takes or right behind the copy. To
// the same read it may as well be right, so there the wait comes before the next other request.
std::optional<int> ExchangeLoop::waitAfter(const Exchange& exchange)
{
    const bool isGood = exchange.verdict == ReplyVerdict::Good;
    if ((!isGood && !isPlainNak(exchange)) || m_isUnsure)
        return m_line.quietMs();
    if (exchange.reply != m_lastAnswer.reply)
        return std::nullopt;
    const qint64 momentAfterUs = PlcLine::momentUs(m_lastAnswer.responseUs);
    const bool isEarly = exchange.responseUs < m_lastAnswer.responseUs - momentAfterUs;
    const int momentMs = static_cast<int>(momentAfterUs / 1000) + 1;
    if (isGood && exchange.frame.isRead != 0 &&
        requestBytes(exchange.frame) == requestBytes(m_lastAnswer.frame)) {
        const auto usualMs = static_cast<int>(m_lastAnswer.responseUs / 1000);
        m_waitBeforeOtherMs =
            std::max(m_waitBeforeOtherMs, isEarly ? usualMs + momentMs : momentMs);
        return std::nullopt;
    }
    return isEarly ? m_line.quietMs() : momentMs;
}

void ExchangeLoop::handOver(Exchange& exchange)
{
    if (exchange.verdict == ReplyVerdict::Surrounded && m_isTolerant)
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

QByteArray ExchangeLoop::overhear(int timeMs)
{
    QByteArray heard = m_line.overhear(timeMs);
    throwAway(heard);
    return heard;
}

bool ExchangeLoop::greet()
{
    QByteArray junk;
    m_isUnsure = !m_line.greet(junk);
    throwAway(junk);
    m_lastRequest.clear();
    return !m_isUnsure;
}

void ExchangeLoop::throwAway(const QByteArray& bytes)
{
    m_statistics.bytesReceived += bytes.size();
    m_statistics.bytesThrownAway += bytes.size();
}

}  // namespace fxtools
