// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A worker on simulated time, and the link and PLC behind it, which outlive it. It says what
// docs/serve.md describes, until its troubles come: it hangs, dies in the middle of a line, floods,
// talks nonsense, is deaf or answers twice.

#pragma once

#include "tools/fxgate/workers/worker.h"
#include "witness.h"

namespace chaos {

class SimulatedWorker;

// What there is of one link whoever serves it.
struct SimulatedLink
{
    int number = 0;
    qint64 periodMs = 1000;
    std::array<qint64, tagsOfLink> changes = {};  // so far, of each tag
    std::array<qint64, tagsOfLink> badUntilMs = {};
    qint64 lostUntilMs = 0;
    qint64 absentUntilMs = 0;  // the program of its worker
    bool isServed = true;
    int edition = 0;      // of its tag file
    double deafness = 0;  // of writes that are not answered, or twice
    SimulatedWorker* worker = nullptr;
};

class SimulatedWorker : public fxgate::Worker
{
public:
    SimulatedWorker(Timeline& timeline, Random& random, Witness& witness, SimulatedLink& link)
        : m_timeline(timeline), m_random(random), m_witness(witness), m_link(link)
    {}
    ~SimulatedWorker() override;

    void start() override;
    qint64 pid() const override { return m_isRunning ? 1 : 0; }
    void write(const QByteArray& bytes) override;
    void endInput() override;
    void kill() override;
    bool waitUntilEnded(int timeoutMs) override;

    // Troubles
    void hang(qint64 timeMs) { m_hangsUntilMs = m_timeline.steadyMs() + timeMs; }
    void die();
    void flood();
    void talkNonsense();

private:
    void end(const QString& how, qint64 delayMs);
    void say(const QByteArray& line, const std::function<void()>& heard);
    void begin();
    void cycle();
    void everySecond();
    void tellState();
    void tellValues(bool all);
    void carryOut(const QJsonObject& write);
    bool isLinkUp() const { return m_timeline.steadyMs() >= m_link.lostUntilMs; }
    bool hangs() const { return m_timeline.steadyMs() < m_hangsUntilMs; }

    Timeline& m_timeline;
    Random& m_random;
    Witness& m_witness;
    SimulatedLink& m_link;
    bool m_isRunning = false, m_hasEnded = false;
    bool m_saysUp = false;
    qint64 m_hangsUntilMs = 0;
    qint64 m_pipeMs = 0;  // when the last that was printed is read
    std::array<bool, tagsOfLink> m_saysGood = {};
    int m_reasons = 0;
};

}  // namespace chaos
