// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Opens a link, and opens it again when it was lost: with pauses that grow and vary, for as long as
// the user said.

#pragma once

#include "tools/link/link.h"

#include <QElapsedTimer>

#include <functional>
#include <optional>

namespace fxtools {

class LinkKeeper
{
public:
    std::function<void(const QString& text)> onState;  // each change of state, in words

    // A lost link is awaited half a minute and a missing one not at all, unless `patienceS` says
    // how long, in seconds.
    LinkKeeper(Link& link, std::optional<int> patienceS);

    // What a command that runs until it is stopped does about a lost link, unless told otherwise.
    void waitWithoutEnd();

    // Throws Failure when the link is not there. After an interrupt it may not be open.
    void openFirst();

    // Whether a lost link is open again. `answers` counts good answers since the start: a link that
    // breaks again before there was another one has not been back, and patience goes on shrinking.
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
    std::optional<int> m_patienceS;  // nothing: without end
    QElapsedTimer m_gone;
    int m_pauseMs;
    qint64 m_answersUntilLoss = -1;
};

}  // namespace fxtools
