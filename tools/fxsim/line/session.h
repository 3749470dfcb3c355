// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One host on one link: cuts its bytes into frames, has each judged and carried out, lets the
// faults damage the reply and queues it. See simulator.h for how it is driven. A session must not
// outlive its simulator.

#pragma once

#include "tools/fxsim/faults/fault_damage.h"
#include "tools/fxsim/line/frame_reader.h"
#include "tools/fxsim/line/simulator.h"

#include <optional>

namespace fxsim {

class Session
{
public:
    Session(Simulator& simulator, const QByteArray& client);

    // For a real serial port, where the hardware paces the characters.
    void setTiming(const LineTiming& timing) { m_line = PacedLine(timing); }

    void receive(const QByteArray& bytes, qint64 nowUs);
    QByteArray takeDue(qint64 nowUs);
    qint64 nextDueUs() const { return m_line.nextDueUs(); }
    qint64 queuedUntilUs() const { return m_line.queuedUntilUs(); }

    // Set when a fault closed the link: for how many milliseconds. Asking clears it.
    std::optional<int> takeLinkDrop();

private:
    void noticePowerCycle();
    void handle(const LineEvent& event);
    void greet();
    void exchange(const QByteArray& frame);
    void answer(const Request& request, const QByteArray& frame, const ActiveFaults& faults,
                Dice& dice);
    QByteArray replyTo(const Request& request, bool refused);
    void refuseOverlong();
    void noteFaults(const ActiveFaults& faults);
    void send(const QByteArray& bytes, const QByteArray& note, qint64 notBeforeUs);
    qint64 scanEndUs() const;
    void trace(TraceEntry::Direction direction, const QByteArray& bytes,
               const QByteArray& text) const;

    Simulator& m_simulator;
    QByteArray m_client;
    FrameReader m_reader;
    PacedLine m_line;
    qint64 m_nowUs = 0;      // while bytes are handled
    qint64 m_arrivedUs = 0;  // when the last of them has arrived, at the speed of the line
    qint64 m_powerCyclesSeen = 0;
    bool m_greeted = false;
    std::optional<int> m_linkDropMs;
};

}  // namespace fxsim
