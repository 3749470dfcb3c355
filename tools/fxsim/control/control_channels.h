// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Where control commands come from: the standard input, and the clients of a local socket. Both
// hand over whole lines and print what comes back.

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
    // Reads the descriptor until it ends; the end of the input does not end the simulator. A
    // terminal in whose background it runs is read again from when it comes to the foreground.
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

    QString listen(const QString& path);  // what went wrong, or nothing

private:
    void welcome();

    Control& m_control;
    QLocalServer m_server;
};

}  // namespace fxsim
