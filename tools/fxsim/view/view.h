// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim --view: the panel on a terminal, drawn ten times a second, and its keys. The terminal is as
// it was before whenever the simulator ends, stops (Ctrl-Z) or goes to the background.

#pragma once

#include "tools/fxsim/control/control.h"
#include "tools/fxsim/view/panel.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <termios.h>

namespace fxsim {

// The terminal in the state that a view needs. Restores it when it goes.
class ViewTerminal
{
public:
    ViewTerminal() = default;
    ~ViewTerminal() { leave(); }
    ViewTerminal(const ViewTerminal&) = delete;
    ViewTerminal& operator=(const ViewTerminal&) = delete;

    static bool exists();  // on standard input and output
    static bool isInForeground();

    void enter();
    void leave();
    void draw(const Panel& panel);

private:
    bool m_isEntered = false;
    termios m_before{};
    QByteArray m_drawn;
};

class View : public QObject
{
    Q_OBJECT

public:
    View(Simulator& plc, Control& control, const ControlActions& actions);
    ~View() override;

    void setLinks(const QString& names) { m_state.links = names; }
    void say(const QString& message) { m_state.message = message; }

private:
    void suspend();
    void refresh();
    void readKeys();
    void take(char character);
    void press(char key);
    void pressSequence(const QByteArray& key);
    void pressInPrompt(char key);
    void clearAnswer();
    void select(int input);
    void switchSelected();

    Simulator& m_plc;
    Control& m_control;
    ControlActions m_actions;
    PanelState m_state;
    QByteArray m_sequence;  // of a key, not yet whole
    ViewTerminal m_terminal;
    QTimer m_timer;
    QSocketNotifier m_keys;
    int m_suspensions = -1;  // a descriptor that tells of Ctrl-Z
    QSocketNotifier m_suspended;
};

}  // namespace fxsim
