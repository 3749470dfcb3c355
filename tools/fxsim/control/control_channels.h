// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Where control commands come from: standard input, and the clients of a local socket. Both hand
// over whole lines and print the answer. And the other end of that socket.

#pragma once

#include "tools/fxsim/control/control.h"

#include <QLocalServer>
#include <QSocketNotifier>
#include <QTimer>

namespace fxsim {

class InputControl : public QObject
{
    Q_OBJECT

public:
    // Reads the descriptor until it ends; the end of the input does not end the simulator. In the
    // background of a terminal, reading resumes when the simulator returns to the foreground.
    InputControl(Control& control, int inputDescriptor);

private:
    void readAvailable();

    Control& m_control;
    QSocketNotifier m_notifier;
    QTimer m_retry;
    QByteArray m_partLine;
};

class SocketControl : public QObject
{
    Q_OBJECT

public:
    explicit SocketControl(Control& control);

    void listen(const QString& path);  // throws an Error

private:
    void welcome();

    Control& m_control;
    QLocalServer m_server;
};

// fxsim --tell: sends one command to the simulator that listens at the path and prints its answer.
// Throws an Error when nobody answered or the simulator refused the command.
void tell(const QString& controlPath, const QString& command);

}  // namespace fxsim
