// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Simulated time: what happens when, in an order that does not depend on anything else. The time of
// day may be set; the steady clock only goes on.

#pragma once

#include "tools/fxgate/moment.h"

#include <functional>
#include <map>
#include <random>

namespace chaos {

using Random = std::mt19937;

inline int below(Random& random, int limit)
{
    return std::uniform_int_distribution<>(0, limit - 1)(random);
}

inline bool chance(Random& random, double probability)
{
    return std::uniform_real_distribution<>(0, 1)(random) < probability;
}

class Timeline
{
public:
    using Owner = const void*;

    fxgate::Moment now() const { return {m_steadyMs + m_utcMinusSteadyMs, m_steadyMs}; }
    qint64 steadyMs() const { return m_steadyMs; }

    void after(qint64 delayMs, Owner owner, const std::function<void()>& happens);
    void forget(Owner owner);

    // What is due until then, of one owner or of all.
    void runUntil(qint64 steadyMs, Owner only = nullptr,
                  const std::function<bool()>& isDone = nullptr);

    void setClock(qint64 byMs) { m_utcMinusSteadyMs += byMs; }

    // The program waits for something, so that what is due has to wait for the program.
    void block(qint64 timeMs);
    qint64 blockedUntilMs() const { return m_blockedUntilMs; }

private:
    struct Event
    {
        Owner owner;
        std::function<void()> happens;
    };

    qint64 m_steadyMs = 1000;
    qint64 m_utcMinusSteadyMs = 1795348800000;
    qint64 m_blockedUntilMs = 0;  // last
    quint64 m_events = 0;
    std::map<std::pair<qint64, quint64>, Event> m_due;
};

}  // namespace chaos
