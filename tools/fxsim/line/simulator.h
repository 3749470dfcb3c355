// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The whole PLC: memory, program, faults and statistics, shared by all its sessions. A session is
// one host on one link. Neither opens anything, sleeps or reads a clock: the caller passes the
// bytes and the time in microseconds (of any clock that only moves forward). fxsim does that from
// an event loop; a host can do it in its own process:
//
//   fxsim::Simulator plc(settings, std::make_unique<fxsim::SampleProgram>(), nowUs());
//   fxsim::Session session(plc, "inside");
//   session.receive(request, nowUs());                 // any bytes, cut anywhere
//   plc.advance(nowUs());                              // now and then: the program runs
//   reply += session.takeDue(nowUs());                 // what has left the PLC by now
//   session.nextDueUs()                                // when to ask again, or nothingDue

#pragma once

#include "tools/fxsim/faults/faults.h"
#include "tools/fxsim/line/frame_server.h"
#include "tools/fxsim/line/paced_line.h"
#include "tools/fxsim/plc/model.h"
#include "tools/fxsim/plc/plc_memory.h"

#include <QByteArray>
#include <QMap>
#include <QVector>

#include <array>
#include <functional>
#include <memory>

namespace fxsim {

enum class EnquiryMode
{
    Optional,  // ENQ gets ACK; frames are answered without one
    Needed,    // no frame is answered before an ENQ, on each link and after each power cycle
    Ignored,   // ENQ resets the receiver and gets no reply
};
enum class OnError
{
    Nak,
    Silence
};

struct Settings
{
    LineTiming timing;
    EnquiryMode enquiry = EnquiryMode::Optional;
    OnError onError = OnError::Nak;
    int maxBytes = 64;  // the largest read and write that PLCs of this family accept
    FaultPlan faults;
    quint64 seed = 1;
    const Model* model = nullptr;  // none: nobody keeps the special registers
    QDateTime startedAt;           // what the clock of the PLC shows at 0 us; if any
};

struct TraceEntry
{
    enum class Direction
    {
        FromHost,
        ToHost,
        Note
    };
    qint64 atUs = 0;
    QByteArray client;
    Direction direction = Direction::Note;
    QByteArray bytes;
    QByteArray text;
};
using TraceSink = std::function<void(const TraceEntry&)>;

// What the simulator has counted since it started. Sessions count; the `stats` command and --stats
// print.
struct Statistics
{
    qint64 exchanges = 0;  // frames that came whole, answered or not
    qint64 reads = 0;
    qint64 writes = 0;
    qint64 forces = 0;
    std::array<qint64, verdictKinds> verdicts{};
    std::array<qint64, faultKinds> faults{};
    qint64 enquiries = 0;
    qint64 overlongFrames = 0;
    qint64 ungreetedFrames = 0;  // left unanswered because no ENQ came first
    qint64 junkCharacters = 0;
    qint64 ignoredCharacters = 0;  // arrived while the PLC was off
    qint64 charactersIn = 0;
    qint64 charactersOut = 0;
    qint64 charactersLost = 0;  // the host did not read them
    qint64 clients = 0;
    qint64 powerCycles = 0;

    void countRequest(const Request& request);
    QByteArray text() const;
};

class Simulator
{
public:
    // `program` may be null: then only hosts change the memory.
    Simulator(const Settings& settings, std::unique_ptr<Program> program, qint64 nowUs);

    // Sets the memory as it is after every power-on, and starts the program.
    void powerOnWith(const PlcMemory& memory, qint64 nowUs);
    void advance(qint64 nowUs);
    void refresh(qint64 nowUs);  // the special registers alone: their clocks outrun any scan

    // The switch RUN/STOP. A stopped PLC switches its outputs off; a run starts the program anew.
    void setRunning(bool running, qint64 nowUs);
    bool isRunning() const { return m_isRunning; }

    // Exchanges count from 1 again.
    void setFaults(const FaultPlan& plan);
    qint64 exchangeOfPlan() const { return m_statistics.exchanges - m_exchangesBeforePlan; }

    // Inputs that somebody switches by hand: they stay so whatever the program does to them.
    void switchInput(int number, bool on);
    void releaseInput(int number);
    void releaseInputs();
    const QMap<int, bool>& switches() const { return m_switches; }

    void powerCycle(int offMs, qint64 nowUs);
    bool isOff(qint64 nowUs) const { return nowUs < m_offUntilUs; }

    PlcMemory& memory() { return m_memory; }
    const Settings& settings() const { return m_settings; }
    Statistics& statistics() { return m_statistics; }
    void setTrace(TraceSink sink) { m_trace = std::move(sink); }
    bool isTraced() const { return m_trace != nullptr; }  // without a trace no texts are made
    void trace(const TraceEntry& entry) const;

private:
    void applySwitches();
    void switchOutputsOff();
    void startProgram(qint64 nowUs);

    Settings m_settings;
    PlcMemory m_memory;
    QByteArray m_powerOnImage;
    std::unique_ptr<Program> m_program;
    Statistics m_statistics;
    TraceSink m_trace;
    QMap<int, bool> m_switches;
    bool m_isRunning = true;
    qint64 m_shownSecond = -1;  // of the clock in the special registers
    qint64 m_poweredUs = 0;     // since when it has power
    qint64 m_inStateUs = 0;     // since when it runs or is stopped
    qint64 m_offUntilUs = 0;
    qint64 m_exchangesBeforePlan = 0;
};

// One trace line from one entry: time in seconds, client, direction, the bytes in hex, the same
// bytes readable, and what the simulator made of them.
QByteArray traceLine(const TraceEntry& entry);

// Control characters by name, the rest as they are: "<STX>010C804<ETX>73".
QByteArray readable(const QByteArray& bytes);

}  // namespace fxsim
