// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host's timing: gets a frame from the driver, sends it, receives the reply and hands it over.
// One call of step() sends one frame and receives one reply.
//
// A reply carries no address, so a late one looks like the reply to the next request of the same
// length. Four rules prevent that:
//   1. Only a reply of exactly the expected length is handed over. For any other one the driver
//      gets as many NAKs as bytes came, which it must reject.
//   2. Before a frame is sent, the line must be empty for a moment that suits its speed.
//   3. After anything but a good reply or a single NAK the line is drained until it is quiet. After
//      a time-out the PLC must also answer ENQ with ACK before the next frame: a PLC answers in
//      order, so no older reply can come after that ACK. Without an ACK the host waits for another
//      time-out.
//   4. A reply that repeats the one before may be its second copy: it counts only if none follows.
// A line that is not quiet within two seconds gets no frame.

#pragma once

#include "tools/exchange/adaptive_timeout.h"
#include "tools/exchange/driver_session.h"
#include "tools/exchange/statistics.h"
#include "tools/link/link.h"

#include <functional>
#include <optional>

namespace fxtools {

struct LoopSettings
{
    TimeoutLimits timeout;
    int betweenBytesMs = 100;         // a USB adapter delivers bytes in slices with pauses
    bool tolerant = false;            // takes a right reply among extra characters
    std::function<qint64()> clockUs;  // empty: the real time; a simulated link may bring its own
    std::function<bool()> isInterrupted;  // whether the user has interrupted; empty: never
};

class ExchangeLoop
{
public:
    // Called once, before the first frame is sent.
    std::function<void()> onFirstFrame;

    // Called after each exchange, with everything that is known about it.
    std::function<void(const Exchange&)> onExchange;

    // Called once, with what came, if something on the line sends by itself.
    std::function<void(const QByteArray& heard)> onBabble;

    // Called when the link is lost during a round. Returns whether it is open again.
    std::function<bool()> onLinkLost;

    ExchangeLoop(DriverSession& session, Link& link, const LoopSettings& settings = {});

    // Nothing when the driver has nothing to send.
    std::optional<Exchange> step();

    // Ends a recipe transfer without another frame: the next one starts at its first entry.
    void abandonRecipe(RecipeDirection direction);

    // Sends ENQ and discards what comes before the ACK. Returns whether the ACK came.
    bool resynchronise();

    // What the line sends within this time without being asked.
    QByteArray overhear(int timeMs);

    // Whether the last exchanges got no reply, and the ENQ after each of them no answer.
    bool hasGoneSilent() const { return m_unansweredInARow >= unansweredUntilSilent; }

    DriverSession& session() { return m_session; }
    const Link& link() const { return m_link; }
    const Statistics& statistics() const { return m_statistics; }
    Statistics& statistics() { return m_statistics; }
    const AdaptiveTimeout& timeout() const { return m_timeout; }
    qint64 elapsedUs() const { return m_settings.clockUs(); }
    bool isInterrupted() const { return m_settings.isInterrupted(); }

private:
    static constexpr int unansweredUntilSilent = 3;

    void sendAndReceive(Exchange& exchange);
    void handOver(Exchange& exchange);
    void settle(Exchange& exchange, int forQuietMs);
    void noteSilence(const Exchange& exchange, bool enquiryAnswered);
    std::optional<int> waitForAnother(const Exchange& exchange) const;
    QByteArray receive(int byteCount);
    QByteArray listen(int timeoutMs);
    bool drain(int quietMs, QByteArray& junk);
    bool ask(QByteArray& junk);
    bool enquire(QByteArray& junk);
    void throwAway(const QByteArray& bytes);
    qint64 momentUs(qint64 responseUs) const;
    int quietMs() const;
    int betweenBytesMs() const;

    DriverSession& m_session;
    Link& m_link;
    LoopSettings m_settings;
    AdaptiveTimeout m_timeout;
    Statistics m_statistics;
    bool m_isQuiet = true;  // as far as is known
    qint64 m_heardUs = 0;   // when the last bytes came, apart from an ACK
    Exchange m_lastGood;
    int m_unansweredInARow = 0;
    bool m_repeating = false;  // the driver will give the same frame again
    bool m_mayBeDone = false;  // of the frame that is repeated
    ExchangeKind m_kind = ExchangeKind::CyclicRead;
    int m_enquiriesUnanswered = 0;
    bool m_enquiryWasAnswered = false;
};

}  // namespace fxtools
