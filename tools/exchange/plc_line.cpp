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

constexpr int readCharacters = 11;        // of its request
constexpr int exchangesUntilGuessed = 4;  // how late replies begin
constexpr qint64 soonestOnWireUs = 800;   // what is quicker comes from a program, at any speed

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
bool PlcLine::drainBeforeFrame(qint64 momentUs, QByteArray& junk)
{
    const qint64 restUs = std::max<qint64>(momentUs - tooSoonUs(), 0);
    return drain(m_isQuiet ? wholeMs(restUs) : quietMs(), junk);
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

// What was found before is forgotten little by little.
qint64 PlcLine::leastOfLate(std::optional<qint64> before, qint64 now)
{
    return before ? std::min(now, *before + now / exchangesUntilForgotten) : now;
}

void PlcLine::noteBeginning(qint64 afterUs, int requestCharacters)
{
    const int characters = requestCharacters + 1;  // the first of the reply
    m_characterUs = leastOfLate(m_characterUs, afterUs / characters);
    m_latestUs = std::max(afterUs - *m_characterUs * characters,
                          m_latestUs - m_latestUs / exchangesUntilForgotten);
    m_beginnings = std::min(m_beginnings + 1, exchangesUntilGuessed);
    if (requestCharacters != readCharacters)
        return;
    m_soonestUs = leastOfLate(m_soonestUs, afterUs);
    m_readsSinceStray = std::min(m_readsSinceStray + 1, exchangesUntilForgotten);
}

int PlcLine::untilLatestMs(int requestCharacters, qint64 sinceUs, qint64 momentUs) const
{
    if (m_beginnings < exchangesUntilGuessed)
        return longestDoubtMs();
    const qint64 latestUs = *m_characterUs * (requestCharacters + 1) + 2 * m_latestUs;
    const qint64 leftUs = std::max<qint64>(latestUs - sinceUs, 0) + momentUs;
    return std::min(wholeMs(leftUs), longestDoubtMs());
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
    const bool isKnown =
        m_readsSinceStray >= exchangesUntilForgotten && soonestUs >= soonestOnWireUs;
    return isKnown ? soonestUs / 2 : 0;
}

int PlcLine::wholeMs(qint64 us) const
{
    const bool isOnWire = m_timeout.typicalResponseUs() >= soonestOnWireUs;
    return static_cast<int>((isOnWire ? us + 999 : us) / 1000);
}

int PlcLine::longestDoubtMs() const
{
    const qint64 usualMs = m_timeout.typicalResponseUs() / 1000;
    return static_cast<int>(std::max<qint64>(longestQuietMs, leastQuietResponses * usualMs));
}

int PlcLine::quietMs() const
{
    const qint64 typicalUs = m_timeout.typicalResponseUs();
    if (typicalUs == 0)
        return longestQuietMs;
    const qint64 wantedMs = quietResponses * (typicalUs / 1000);
    return static_cast<int>(std::clamp<qint64>(wantedMs, shortestQuietMs, longestDoubtMs()));
}

}  // namespace fxtools
