// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The commands that a person or a script gives while the simulator runs, on its standard input or
// over the control socket. Each command is one line. The answer is some lines, the last of which is
// "ok" or starts with "error: ".

#pragma once

#include "tools/fxsim/line/simulator.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace fxsim {

// What the commands need of the program around the simulator.
struct ControlActions
{
    std::function<void()> quit;
    std::function<void(int forMs)> dropLinks;
    std::function<qint64()> nowUs;
};

class Control
{
public:
    Control(Simulator& simulator, const ControlActions& actions)
        : m_simulator(simulator), m_actions(actions)
    {}

    QByteArray run(const QString& line);

private:
    Simulator& m_simulator;
    ControlActions m_actions;
};

}  // namespace fxsim
