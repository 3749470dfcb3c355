// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/plc_line.h"

#include "tools/exchange/reply_verdict.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace fxtools {

namespace {

// A line is quiet when nothing has come for four usual response times, within these limits, and for
// two at least.
constexpr int shortestQuietMs = 5;
constexpr int longestQuietMs = 250;
constexpr int quietResponses = 4;
constexpr int leastQuietResponses = 2;

constexpr int momentShare = 8;
constexpr int longestMomentMs = 5;
constexpr int leastMomentCharacters = 2;
constexpr qint64 soonestOnWireUs = 800;  // what is quicker comes from a program, at any speed

constexpr int longestTurnMs = 100;
constexpr int longestDrainMs = 2000;        // of a line that is never quiet,
constexpr int longestSecondDrainMs = 500;   // also when it is tried again,
constexpr int longestJunkBytes = 4096;      // and the most bytes
constexpr int acksToGreet = 2;              // the first may be an earlier one
constexpr int mostGreetings = 10;           // until then
constexpr int enquiriesBeforeGivingUp = 3;  // some PLCs do not answer ENQ
constexpr int longestReplyMs = 5000;        // the longest takes 4.4 s at 300 baud

}  // namespace

PlcLine::PlcLine(Link& link, const TimingSettings& settings, Statistics& statistics)
    : m_link(link), m_settings(settings), m_timeout(settings.timeout), m_statistics(statistics)
{
    if (!m_settings.isInterrupted)
        m_settings.isInterrupted = [] { return false; };
    if (m_settings.clockUs)
        return;
    QElapsedTimer clock;
    clock.start();
    m_settings.clockUs = [clock] { return clock.nsecsElapsed() / 1000; };
}

bool PlcLine::send(const QByteArray& bytes)
{
    return m_link.send(bytes);
}

// Ends early also when a reply breaks off.
QByteArray PlcLine::receive(int byteCount)
{
    QByteArray reply = listen(m_timeout.milliseconds());
    m_beganUs = elapsedUs();
    const qint64 endUs = m_beganUs + 1000LL * longestReplyMs;
    bool goesOn = !reply.isEmpty();
    while (goesOn && reply.size() < byteCount && reply.front() != nak && !isInterrupted()) {
        const QByteArray more = listen(betweenBytesMs());
        reply += more;
        goesOn = !more.isEmpty() && elapsedUs() < endUs;
    }
    return reply;
}

int PlcLine::betweenBytesMs() const
{
    return std::min(m_settings.betweenBytesMs, m_timeout.milliseconds());
}

// In short turns, so that an interrupt does not have to wait for a long time-out. A data frame
// contains no ACK, and while one is owed no write is sent: an ACK then answers an ENQ.
QByteArray PlcLine::listen(int timeoutMs)
{
    QByteArray bytes = m_link.receive(std::min(timeoutMs, longestTurnMs));
    for (int leftMs = timeoutMs - longestTurnMs;
         bytes.isEmpty() && leftMs > 0 && m_link.isOpen() && !isInterrupted();
         leftMs -= longestTurnMs)
        bytes = m_link.receive(std::min(leftMs, longestTurnMs));
    if (!bytes.isEmpty() && bytes != QByteArray(1, ack))
        m_heardUs = elapsedUs();
    const int acks = std::min(m_acksOwed, bytes.count(ack));
    m_acksOwed -= acks;
    m_enquiryWasAnswered |= acks > 0;
    return bytes;
}

bool PlcLine::drain(int forQuietMs, QByteArray& junk)
{
    const int longestMs = m_isQuiet ? longestDrainMs : longestSecondDrainMs;
    const int mostBytes = junk.size() + longestJunkBytes;
    QByteArray more = isInterrupted() ? QByteArray() : listen(forQuietMs);
    const qint64 endUs = elapsedUs() + 1000 * qint64(longestMs);
    while (!more.isEmpty() && elapsedUs() < endUs && junk.size() < mostBytes && !isInterrupted()) {
        junk += more;
        more = listen(std::max(forQuietMs, quietMs()));
    }
    junk += more;
    m_isQuiet = more.isEmpty() && !isInterrupted();
    return m_isQuiet;
}

// What comes too soon after the frame is known to be stray: only the rest of a moment is waited.
// While that is not known, a copy that follows its reply at once must begin before the frame.
bool PlcLine::drainBeforeFrame(qint64 characterUs, QByteArray& junk)
{
    const qint64 typicalUs = m_timeout.typicalResponseUs();
    const qint64 soonUs = tooSoonUs();
    qint64 restUs = std::max<qint64>(momentUs(typicalUs) - soonUs, 0);
    if (soonUs == 0 && typicalUs >= soonestOnWireUs)
        restUs = std::max(restUs, leastMomentCharacters * characterUs) + 999;
    return drain(m_isQuiet ? static_cast<int>(restUs / 1000) : quietMs(), junk);
}

QByteArray PlcLine::overhear(int timeMs)
{
    QByteArray heard;
    const qint64 endUs = elapsedUs() + 1000 * qint64(timeMs);
    for (qint64 nowUs = elapsedUs(); nowUs < endUs && !isInterrupted() && m_link.isOpen();
         nowUs = elapsedUs())
        heard += listen(static_cast<int>((endUs - nowUs + 999) / 1000)).left(longestJunkBytes);
    return heard;
}

bool PlcLine::greet(QByteArray& junk)
{
    if (!m_isQuiet && !drain(quietMs(), junk))
        return false;
    m_acksOwed += std::exchange(m_greetingsOwed, 0);
    for (int sent = 0, alone = 0; sent < mostGreetings; ++sent) {
        const int before = junk.size();
        if (!enquire(m_timeout.milliseconds(), junk))
            break;
        alone = junk.size() == before ? alone + 1 : 0;
        if (alone == acksToGreet)
            return true;
    }
    m_greetingsOwed = std::exchange(m_acksOwed, 0);
    return false;
}

void PlcLine::forgetAcks()
{
    m_acksOwed = 0;
    m_greetingsOwed = 0;
}

bool PlcLine::ask(QByteArray& junk, bool plcIsSilent)
{
    const bool answered =
        (isWorthAsking() || plcIsSilent) && enquire(m_timeout.milliseconds(), junk);
    if (!isWorthAsking())
        m_acksOwed = 0;
    // Where ENQ is not answered, or not in order, only waiting clears the line.
    drain(m_timeout.milliseconds(), junk);
    return answered;
}

bool PlcLine::isWorthAsking() const
{
    return m_enquiryWasAnswered || m_enquiriesIgnored < enquiriesBeforeGivingUp;
}

void PlcLine::askAndOutwait(QByteArray& junk)
{
    enquire(longestReplyMs, junk);
    outwaitAcks(junk);
}

bool PlcLine::enquire(int timeoutMs, QByteArray& junk)
{
    ++m_statistics.enquiriesSent;
    ++m_acksOwed;
    m_enquiredUs = elapsedUs();
    if (!m_link.send(QByteArray(1, enq)))
        return false;
    const bool answered = awaitAcks(timeoutMs, junk);
    m_statistics.enquiriesAnswered += answered;
    return answered;
}

// Late replies may come first. Returns whether an ACK came.
bool PlcLine::awaitAcks(int timeoutMs, QByteArray& junk)
{
    QByteArray late;
    const qint64 endUs = elapsedUs() + 1000 * qint64(std::max(longestDrainMs, timeoutMs));
    QByteArray more = listen(timeoutMs);
    while (!more.isEmpty() && m_acksOwed > 0 && elapsedUs() < endUs &&
           late.size() < longestJunkBytes && !isInterrupted()) {
        late += more;
        more = listen(timeoutMs);
    }
    m_isQuiet = more.isEmpty() || more.contains(ack);
    late += more;
    const bool answered = late.contains(ack);
    junk += late.replace(ack, "");
    return answered;
}

void PlcLine::outwaitAcks(QByteArray& junk)
{
    const qint64 leftMs = longestReplyMs - (elapsedUs() - m_enquiredUs) / 1000;
    if (m_acksOwed > 0)
        awaitAcks(static_cast<int>(std::max<qint64>(leftMs, 0)), junk);
    if (isInterrupted())
        return;
    m_enquiriesIgnored += m_acksOwed > 0;
    m_acksOwed = 0;
}

void PlcLine::noteBeginning(qint64 afterUs)
{
    const qint64 soonestUs = m_soonestUs.value_or(afterUs) + afterUs / readsUntilForgotten;
    m_soonestUs = std::min(afterUs, soonestUs);
    m_readsSinceStray = std::min(m_readsSinceStray + 1, readsUntilForgotten);
}

void PlcLine::noteStray()
{
    m_readsSinceStray = 0;
}

// Nothing for a while after a stray reply: it may have been the PLC's own, on a link that has
// become quicker.
qint64 PlcLine::tooSoonUs() const
{
    const qint64 soonestUs = m_soonestUs.value_or(0);
    const bool isKnown = m_readsSinceStray >= readsUntilForgotten && soonestUs >= soonestOnWireUs;
    return isKnown ? soonestUs / 2 : 0;
}

qint64 PlcLine::momentUs(qint64 responseUs)
{
    return std::min<qint64>(responseUs / momentShare, 1000LL * longestMomentMs);
}

int PlcLine::quietMs() const
{
    const qint64 typicalUs = m_timeout.typicalResponseUs();
    if (typicalUs == 0)
        return longestQuietMs;
    const qint64 responseMs = typicalUs / 1000;
    const qint64 longestMs = std::max<qint64>(longestQuietMs, leastQuietResponses * responseMs);
    const qint64 wantedMs = quietResponses * responseMs;
    return static_cast<int>(std::clamp<qint64>(wantedMs, shortestQuietMs, longestMs));
}

}  // namespace fxtools
