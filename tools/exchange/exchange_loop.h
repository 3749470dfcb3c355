// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The host's timing: gets a frame from the driver, sends it, receives the reply and hands it over.
// One call of step() sends one frame and receives one reply.
//
// A reply carries no address, so a late one looks like the reply to the next request of the same
// length. Five rules prevent that:
//   1. Only a reply of exactly the expected length is handed over. For any other one the driver
//      gets as many NAKs as bytes came, which it must reject.
//   2. Before a frame is sent, the line must be empty. A reply that begins sooner than half the
//      quickest time of late is a stray one and does not count: the PLC has not read the request
//      yet. Where that time is shorter than a moment that suits the line, the line must be empty
//      for the rest of the moment.
//   3. After anything but a good reply or a single NAK the line is drained until it is quiet. After
//      a time-out the PLC must also answer ENQ with ACK: a PLC answers in order, so no older reply
//      can come after that ACK. Until it has come, only the same read is sent again, and its reply
//      counts only if the ACK of another ENQ follows. After five seconds the ACK is taken for lost.
//      For a PLC that never answers ENQ, the host waits for another time-out instead.
//   4. A reply or NAK that repeats the one before may be its second copy: it counts only if none
//      follows. Where the same read is sent again and again, the line must be quiet before the
//      first other request instead.
//   5. A line that was opened anew may owe replies to an earlier host, or to this one. Before the
//      first frame the PLC must acknowledge two ENQs in a row with nothing else between, since one
//      ACK may be an earlier one; if that frame is a write, the line must also be quiet. Where no
//      ACK comes, the first reply counts only if nothing follows, and until one counts each frame
//      is the first.
// A line that is not quiet within two seconds gets no frame.

#pragma once

#include "tools/exchange/driver_session.h"
#include "tools/exchange/plc_line.h"
#include "tools/exchange/statistics.h"

#include <functional>
#include <optional>

namespace fxtools {

struct LoopSettings : TimingSettings
{
    bool tolerant = false;  // takes a right reply among extra characters
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

    // Empties the plan, the queues and the cache. A frame in flight is not sent again.
    void forgetEverything();

    // Discards what the PLC still owes to an earlier host. Returns whether it answers ENQ. Where it
    // does not, the next frame does this again.
    bool greet();

    // What the line sends within this time without being asked.
    QByteArray overhear(int timeMs);

    // Whether the last exchanges got no reply, and the ENQ after each of them no answer.
    bool hasGoneSilent() const { return m_unansweredInARow >= unansweredUntilSilent; }

    DriverSession& session() { return m_session; }
    const Link& link() const { return m_line.link(); }
    const Statistics& statistics() const { return m_statistics; }
    Statistics& statistics() { return m_statistics; }
    const AdaptiveTimeout& timeout() const { return m_line.timeout(); }
    qint64 elapsedUs() const { return m_line.elapsedUs(); }
    bool isInterrupted() const { return m_line.isInterrupted(); }

private:
    static constexpr int unansweredUntilSilent = 3;

    void send(Exchange& exchange);
    void receive(Exchange& exchange);
    void settle(Exchange& exchange, int forQuietMs);
    void discardStray(Exchange& exchange);
    void confirm(Exchange& exchange);
    void noteLoss();
    void noteSilence(const Exchange& exchange, bool enquiryAnswered);
    std::optional<int> waitAfter(const Exchange& exchange);
    void handOver(Exchange& exchange);
    void throwAway(const QByteArray& bytes);

    DriverSession& m_session;
    Statistics m_statistics;
    PlcLine m_line;
    bool m_isTolerant;
    bool m_isUnsure = true;           // replies to earlier hosts may come
    QByteArray m_lastRequest;         // since the greeting
    bool m_repeatsWhileOwed = false;  // the last request is a read sent again before an owed ACK
    Exchange m_lastAnswer;            // good or refused
    int m_waitBeforeOtherMs = 0;      // for a copy of an answer to the last request
    int m_unansweredInARow = 0;
    bool m_repeating = false;  // the driver will give the same frame again
    bool m_mayBeDone = false;  // of the frame that is repeated
    ExchangeKind m_kind = ExchangeKind::CyclicRead;
};

}  // namespace fxtools
