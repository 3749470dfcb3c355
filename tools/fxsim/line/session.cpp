// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/line/session.h"

#include "tools/fxsim/line/frame_reader.h"

namespace fxsim {

namespace {

QByteArray names(const ActiveFaults& faults)
{
    QByteArray text;
    for (const ActiveFault& fault : faults.all())
        text += (text.isEmpty() ? "" : ", ") + QByteArray(factsOf(fault.kind).name);
    return text;
}

}  // namespace

Session::Session(Simulator& simulator, const QByteArray& client)
    : m_simulator(simulator), m_client(client), m_line(simulator.settings().timing),
      m_powerCyclesSeen(simulator.statistics().powerCycles)
{
    ++simulator.statistics().clients;
}

void Session::receive(const QByteArray& bytes, qint64 nowUs)
{
    Statistics& statistics = m_simulator.statistics();
    statistics.charactersIn += bytes.size();
    noticePowerCycle();
    if (m_simulator.isOff(nowUs)) {
        statistics.ignoredCharacters += bytes.size();
        return;
    }
    m_nowUs = nowUs;
    m_arrivedUs = m_line.arrivalUs(bytes.size(), nowUs);
    for (const LineEvent& event : m_reader.receive(bytes)) {
        if (m_linkDropMs)
            return;  // what came after the link went is lost with it
        noticePowerCycle();
        if (!m_simulator.isOff(nowUs))
            handle(event);
    }
}

QByteArray Session::takeDue(qint64 nowUs)
{
    noticePowerCycle();
    QVector<PacedLine::Sent> whole;
    QByteArray due = m_line.takeDue(nowUs, whole);
    m_nowUs = nowUs;
    for (const PacedLine::Sent& sent : whole)
        trace(TraceEntry::Direction::ToHost, sent.bytes, sent.note);
    m_simulator.statistics().charactersOut += due.size();
    return due;
}

std::optional<int> Session::takeLinkDrop()
{
    const std::optional<int> dropMs = m_linkDropMs;
    m_linkDropMs.reset();
    return dropMs;
}

// A PLC that was off forgets a half frame, the ENQ it had, and what it was about to send.
void Session::noticePowerCycle()
{
    const qint64 powerCycles = m_simulator.statistics().powerCycles;
    if (m_powerCyclesSeen == powerCycles)
        return;
    m_powerCyclesSeen = powerCycles;
    m_greeted = false;
    m_reader.reset();
    m_line.clear();
}

void Session::handle(const LineEvent& event)
{
    switch (event.kind) {
    case LineEvent::Kind::Enquiry:
        greet();
        break;
    case LineEvent::Kind::Frame:
        exchange(event.bytes);
        break;
    case LineEvent::Kind::Overlong:
        refuseOverlong();
        break;
    case LineEvent::Kind::Junk:
        m_simulator.statistics().junkCharacters += event.bytes.size();
        trace(TraceEntry::Direction::FromHost, event.bytes, "junk, ignored");
        break;
    }
}

void Session::greet()
{
    ++m_simulator.statistics().enquiries;
    trace(TraceEntry::Direction::FromHost, QByteArray(1, enq), "enquiry");
    if (m_simulator.settings().enquiry == EnquiryMode::Ignored)
        return;
    m_greeted = true;
    send(QByteArray(1, ack), QByteArray(), scanEndUs());
}

void Session::exchange(const QByteArray& frame)
{
    ++m_simulator.statistics().exchanges;
    m_simulator.refresh(m_nowUs);
    const Request request =
        judgeFrame(frame, m_simulator.memory(), m_simulator.settings().maxBytes);
    if (m_simulator.isTraced())
        trace(TraceEntry::Direction::FromHost, frame, requestText(request));
    if (m_simulator.settings().enquiry == EnquiryMode::Needed && !m_greeted) {
        ++m_simulator.statistics().ungreetedFrames;
        trace(TraceEntry::Direction::Note, QByteArray(), "no reply: waiting for an ENQ");
        return;
    }
    const qint64 number = m_simulator.exchangeOfPlan();
    Dice dice(m_simulator.settings().seed, number);
    const ActiveFaults faults(m_simulator.settings().faults, number, dice);
    noteFaults(faults);
    if (const ActiveFault* powerCycle = faults.find(FaultKind::PowerCycle))
        m_simulator.powerCycle(powerCycle->value, m_nowUs);
    else if (const ActiveFault* linkDrop = faults.find(FaultKind::LinkDrop))
        m_linkDropMs = linkDrop->value;
    else
        answer(request, frame, faults, dice);
}

void Session::answer(const Request& request, const QByteArray& frame, const ActiveFaults& faults,
                     Dice& dice)
{
    m_simulator.statistics().countRequest(request);
    const QByteArray reply = replyTo(request, faults.has(FaultKind::Nak));
    qint64 notBeforeUs = scanEndUs();
    for (const Chunk& chunk : damaged(reply, frame, faults, dice)) {
        notBeforeUs += chunk.pauseMs * usPerMs;
        send(chunk.bytes, names(faults), notBeforeUs);
        notBeforeUs = std::max(notBeforeUs, m_line.queuedUntilUs());
    }
}

QByteArray Session::replyTo(const Request& request, bool refused)
{
    if (request.verdict == Verdict::Good && !refused)
        return carryOut(request, m_simulator.memory());
    const bool silent = m_simulator.settings().onError == OnError::Silence && !refused;
    return silent ? QByteArray() : QByteArray(1, nak);
}

void Session::refuseOverlong()
{
    ++m_simulator.statistics().overlongFrames;
    trace(TraceEntry::Direction::FromHost, QByteArray(), "frame too long, dropped");
    send(replyTo(Request(), false), QByteArray(), scanEndUs());
}

void Session::noteFaults(const ActiveFaults& faults)
{
    for (const ActiveFault& fault : faults.all())
        ++m_simulator.statistics().faults[static_cast<size_t>(fault.kind)];
    if (!faults.all().isEmpty())
        trace(TraceEntry::Direction::Note, QByteArray(), "fault: " + names(faults));
}

void Session::send(const QByteArray& bytes, const QByteArray& note, qint64 notBeforeUs)
{
    if (!m_line.send(bytes, note, notBeforeUs))
        m_simulator.statistics().charactersLost += bytes.size();
}

qint64 Session::scanEndUs() const
{
    return m_simulator.settings().timing.scanEndUs(m_arrivedUs);
}

void Session::trace(TraceEntry::Direction direction, const QByteArray& bytes,
                    const QByteArray& text) const
{
    m_simulator.trace({m_nowUs, m_client, direction, bytes, text});
}

}  // namespace fxsim
