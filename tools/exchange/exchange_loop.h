// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host's timing: asks the driver for a frame, sends it, gathers the answer, hands it over.
// One call of step() is one frame out and one answer in.
//
// A reply carries no address, so a late one looks like the answer to the next request of the same
// length. Three rules keep it from being taken for one:
//   1. Only an answer of exactly the expected length is handed over; of any other one the driver
//      gets as many NAKs as bytes came, which it must reject.
//   2. Before a frame goes out the line must be empty, for a moment that suits its speed.
//   3. After anything but a good answer or a clean NAK the line is drained until it is quiet, and
//      after a time-out ENQ must be answered by ACK before the next frame: a PLC answers in order,
//      so nothing older can come behind that ACK; one time-out more is left for those that do not.

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
    int betweenBytesMs = 100;         // a USB adapter hands bytes over in slices with pauses
    std::function<qint64()> clockUs;  // empty: the real time; a simulated link may bring its own
    std::function<bool()> isInterrupted;  // whether the user wants an end; empty: never
};

class ExchangeLoop
{
public:
    // Called after each exchange, with everything that is known about it.
    std::function<void(const Exchange&)> onExchange;

    // Called where rounds are made when the link was lost: true when it is open again.
    std::function<bool()> onLinkLost;

    ExchangeLoop(DriverSession& session, Link& link, const LoopSettings& settings = {});

    // Nothing when the driver has nothing to send.
    std::optional<Exchange> step();

    // Asks for a sign of life and throws away what came before it; true when the PLC gave one.
    bool resynchronise();

    DriverSession& session() { return m_session; }
    const Link& link() const { return m_link; }
    const Statistics& statistics() const { return m_statistics; }
    Statistics& statistics() { return m_statistics; }
    const AdaptiveTimeout& timeout() const { return m_timeout; }
    qint64 elapsedUs() const { return m_settings.clockUs(); }
    bool isInterrupted() const { return m_settings.isInterrupted(); }

private:
    void sendAndReceive(Exchange& exchange);
    void handOver(Exchange& exchange);
    void settle(Exchange& exchange);
    QByteArray receive(int byteCount);
    QByteArray listen(int timeoutMs);
    QByteArray drain(int quietMs);
    bool enquire();
    void throwAway(const QByteArray& bytes);
    void clearLine();
    int quietMs() const;
    int betweenBytesMs() const;

    DriverSession& m_session;
    Link& m_link;
    LoopSettings m_settings;
    AdaptiveTimeout m_timeout;
    Statistics m_statistics;
    bool m_repeating = false;  // the driver will give the same frame again
    ExchangeKind m_kind = ExchangeKind::CyclicRead;
    int m_enquiriesUnanswered = 0;
    bool m_enquiryWasAnswered = false;
};

}  // namespace fxtools
