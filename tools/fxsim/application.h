// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim as a running program: the simulator with its links, controls and trace. main() makes one
// and runs the event loop.

#pragma once

#include "tools/fxsim/control/control_channels.h"
#include "tools/fxsim/line/paced_line.h"
#include "tools/fxsim/links/link.h"
#include "tools/fxsim/options.h"
#include "tools/fxsim/view/view.h"

#include <QFile>
#include <QTimer>

#include <memory>
#include <vector>

namespace fxsim {

ExitCode complain(const Error& error);  // prints it; returns its exit code

class Application : public QObject
{
    Q_OBJECT

public:
    explicit Application(const Options& options);

    void start();       // throws an Error; prints "fxsim: ready on ..." when all is open
    ExitCode finish();  // after the event loop ended; prints what could not be written

private:
    void preparePlc();
    void prepareTrace();
    void openControls();
    void openLinks();
    void addLink(std::unique_ptr<Link> link);
    void dropLinks(int forMs);
    void checkView() const;
    void openView();
    QString linkNames() const;
    void tell(const QString& news);
    void printStatistics();
    void endTrace();
    void saveMemory();

    Options m_options;
    Clock m_clock;
    std::unique_ptr<Simulator> m_simulator;
    ControlActions m_actions;
    std::unique_ptr<Control> m_control;
    std::unique_ptr<InputControl> m_inputControl;
    std::unique_ptr<SocketControl> m_socketControl;
    std::vector<std::unique_ptr<Link>> m_links;
    std::unique_ptr<View> m_view;
    QTimer m_scanTimer;
    QFile m_traceFile;
};

}  // namespace fxsim
