// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The simulator's one clock: microseconds since it was made.

#pragma once

#include <QElapsedTimer>

namespace fxsim {

class Clock
{
public:
    Clock() { m_timer.start(); }
    qint64 nowUs() const { return m_timer.nsecsElapsed() / 1000; }

private:
    QElapsedTimer m_timer;
};

}  // namespace fxsim
