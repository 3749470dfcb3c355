// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Opens a link, and reopens it when it is lost: with pauses that grow to a second and vary, for as
// long as the user wants.

#pragma once

#include "tools/link/link.h"

#include <QElapsedTimer>

#include <functional>
#include <optional>

namespace fxtools {

class LinkKeeper
{
public:
    std::function<void(const QString& text)> onState;  // called at each change of state
    std::function<bool()> isInterrupted;               // asked often while it waits; can be set
    std::function<bool(qint64 timeMs)> sleeps;         // false: interrupted; real time, can be set

    // `patienceS` is how long to retry, in seconds. Without it: 30 s for a lost link, and not at
    // all for a link that cannot be opened at the start.
    LinkKeeper(Link& link, std::optional<int> patienceS);

    // Retries a lost link for ever if no time was given: for commands that run until stopped.
    void waitWithoutEnd();

    // Throws Failure if the link cannot be opened, or if the user interrupts the wait for it.
    void openFirst();

    // Whether a lost link is open again. `answers` is the number of good replies since the start:
    // if a link is lost again before a new one, the time to retry continues to run.
    bool reopen(qint64 answers);

private:
    enum class Awaited
    {
        Open,
        GivenUp,
        Interrupted,
    };

    Awaited await();
    bool opens();
    qint64 patienceLeftMs() const;

    Link& m_link;
    std::optional<int> m_givenS;
    std::optional<int> m_patienceS;  // nothing: for ever
    QElapsedTimer m_gone;
    int m_pauseMs;
    qint64 m_answersUntilLoss = -1;
};

}  // namespace fxtools
