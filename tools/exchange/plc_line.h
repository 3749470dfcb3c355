// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The line to the PLC as the exchange loop hears it: how long it waits for replies, when it is
// quiet, which replies are too quick to be true, and which ENQs are still to be acknowledged.

#pragma once

#include "tools/exchange/adaptive_timeout.h"
#include "tools/exchange/statistics.h"
#include "tools/link/link.h"

#include <QByteArray>

#include <functional>
#include <optional>

namespace fxtools {

struct TimingSettings
{
    TimeoutLimits timeout;
    int betweenBytesMs = 100;         // a USB adapter delivers bytes in slices with pauses
    std::function<qint64()> clockUs;  // empty: the real time; a simulated link may bring its own
    std::function<bool()> isInterrupted;  // whether the user has interrupted; empty: never
};

class PlcLine
{
public:
    PlcLine(Link& link, const TimingSettings& settings, Statistics& statistics);

    bool send(const QByteArray& bytes);

    // What comes within the time-out, up to so many bytes or as soon as a NAK shows that no good
    // reply follows.
    QByteArray receive(int byteCount);
    qint64 beganUs() const { return m_beganUs; }  // when the first of these bytes came
    qint64 heardUs() const { return m_heardUs; }  // when the last bytes came, apart from an ACK

    // Appends what comes until nothing has come for so long, and once something has come, for four
    // usual response times at least. Returns whether the line is quiet at last: what does not end
    // is followed for two seconds.
    bool drain(int forQuietMs, QByteArray& junk);

    // The same, for as short a time as is safe before a frame where a character takes so long.
    bool drainBeforeFrame(qint64 characterUs, QByteArray& junk);

    // Everything that comes within this time.
    QByteArray overhear(int timeMs);

    // Sends ENQ until two ACKs in a row have come alone, and appends what comes before. Returns
    // false if no ACK comes within the time-out: then frames need not wait for it.
    bool greet(QByteArray& junk);
    void forgetAcks();  // of a link that was lost

    // Sends ENQ and appends what comes before the ACK, and within another time-out. Returns
    // whether the ACK came. A PLC that has ignored ENQ three times and never answered gets no more,
    // unless it is silent to everything: it may have been off, and may answer no frame before an
    // ENQ.
    bool ask(QByteArray& junk, bool plcIsSilent);

    // The same, but gives the ACK as much time as any reply of the PLC may take.
    void askAndOutwait(QByteArray& junk);

    // Waits for the ACKs of all ENQs so far, until no answer to them can come any more.
    void outwaitAcks(QByteArray& junk);
    bool owesAcks() const { return m_acksOwed > 0; }

    // Whether a reply that began so long after its request is none: the PLC has not even read the
    // request by then. Half the time of the quickest reply of late.
    bool isTooSoon(qint64 afterUs) const { return afterUs < tooSoonUs(); }
    void noteBeginning(qint64 afterUs);  // of the reply to a read
    void noteStray();                    // from now on the line is drained longer for a while

    // A second copy of a reply usually follows it within this small part of its response time.
    static qint64 momentUs(qint64 responseUs);
    int quietMs() const;

    bool isOpen() const { return m_link.isOpen(); }
    bool isInterrupted() const { return m_settings.isInterrupted(); }
    qint64 elapsedUs() const { return m_settings.clockUs(); }
    AdaptiveTimeout& timeout() { return m_timeout; }
    const AdaptiveTimeout& timeout() const { return m_timeout; }
    const Link& link() const { return m_link; }

private:
    static constexpr int readsUntilForgotten = 256;  // a stray reply, or a single quick one
    static constexpr int readsUntilKnown = 16;       // how soon replies begin

    QByteArray listen(int timeoutMs);
    bool isWorthAsking() const;
    bool enquire(int timeoutMs, QByteArray& junk);
    bool awaitAcks(int timeoutMs, QByteArray& junk);
    int betweenBytesMs() const;
    qint64 tooSoonUs() const;

    Link& m_link;
    TimingSettings m_settings;
    AdaptiveTimeout m_timeout;
    Statistics& m_statistics;
    bool m_isQuiet = true;  // as far as is known
    qint64 m_beganUs = 0;
    qint64 m_heardUs = 0;
    std::optional<qint64> m_soonestUs;  // from a request to the first bytes of its reply
    int m_readsSinceStray = readsUntilForgotten - readsUntilKnown;
    int m_acksOwed = 0;          // for the ENQs so far,
    int m_greetingsOwed = 0;     // but for greetings that got none
    qint64 m_enquiredUs = 0;     // when the last of them was sent
    int m_enquiriesIgnored = 0;  // for as long as a reply may take
    bool m_enquiryWasAnswered = false;
};

}  // namespace fxtools
