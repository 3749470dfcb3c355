// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "timeline.h"

#include <algorithm>

namespace chaos {

void Timeline::after(qint64 delayMs, Owner owner, const std::function<void()>& happens)
{
    m_due[{m_steadyMs + delayMs, ++m_events}] = {owner, happens};
}

void Timeline::forget(Owner owner)
{
    for (auto event = m_due.begin(); event != m_due.end();)
        event = event->second.owner == owner ? m_due.erase(event) : std::next(event);
}

void Timeline::runUntil(qint64 steadyMs, Owner only, const std::function<bool()>& isDone)
{
    while (!isDone || !isDone()) {
        const auto next = std::find_if(m_due.begin(), m_due.end(), [only](const auto& event) {
            return only == nullptr || event.second.owner == only;
        });
        if (next == m_due.end() || next->first.first > steadyMs)
            break;
        m_steadyMs = std::max(m_steadyMs, next->first.first);
        const auto happens = next->second.happens;
        m_due.erase(next);
        happens();
    }
    if (!isDone || !isDone())
        m_steadyMs = std::max(m_steadyMs, steadyMs);
}

void Timeline::block(qint64 timeMs)
{
    m_steadyMs += timeMs;
    m_blockedUntilMs = m_steadyMs;
}

}  // namespace chaos
