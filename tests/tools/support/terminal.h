// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A program in a terminal of its own: a pseudo-terminal whose other end is a screen that can be
// read, and a keyboard on which Ctrl-C can be pressed.

#pragma once

#include "tests/tools/support/screen.h"

#include <functional>

namespace tool_tests {

class Terminal
{
public:
    // The program and its arguments. `environment` has NAME=VALUE entries beside those that are
    // always there; TERM is xterm.
    Terminal(const QStringList& command, int columns, int rows,
             const QStringList& environment = {});
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // False when the program ended, or a long time passed, before the screen was like that.
    bool waitFor(const std::function<bool(const Screen&)>& isSo);
    bool waitForText(const QString& text);

    void press(char key);
    void send(int signal);
    void resize(int columns, int rows);
    bool echoes() const;  // what is typed, as a terminal does before and after every program
    int waitForEnd();     // the exit code; -1 when it did not end well

    const Screen& screen() const { return m_screen; }
    const QByteArray& written() const { return m_written; }  // all bytes so far

private:
    enum class Heard
    {
        Bytes,
        Nothing,
        End,
    };
    Heard listen(int forMs);

    int m_master = -1;
    int m_child = -1;
    bool m_hasEnded = false;
    Screen m_screen;
    QByteArray m_written;
};

constexpr char ctrlC = 0x03;

}  // namespace tool_tests
