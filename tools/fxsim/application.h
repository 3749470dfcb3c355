// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim as a running program: the simulator, its links, its controls and its trace, held together
// from the first line on standard output ("fxsim: ready on ...") to a clean end. main() makes one
// and runs the event loop.

#pragma once

#include "tools/fxsim/control/control_channels.h"
#include "tools/fxsim/line/clock.h"
#include "tools/fxsim/links/link.h"
#include "tools/fxsim/options.h"

#include <QFile>
#include <QTimer>

#include <memory>
#include <vector>

namespace fxsim {

class Application : public QObject
{
    Q_OBJECT

public:
    explicit Application(const Options& options);

    int start();   // an ExitCode; on anything but exitGood the reason was printed
    int finish();  // the same, after the event loop ended

private:
    int prepareMemory();
    int prepareProgram();
    int prepareTrace();
    int openLinks();
    int openControls();
    void addLink(std::unique_ptr<Link> link);
    void dropLinks(int forMs);
    void sayReady() const;

    Options m_options;
    Clock m_clock;
    std::unique_ptr<Simulator> m_simulator;
    std::unique_ptr<Control> m_control;
    std::unique_ptr<InputControl> m_inputControl;
    std::unique_ptr<SocketControl> m_socketControl;
    std::vector<std::unique_ptr<Link>> m_links;
    QTimer m_scanTimer;
    QFile m_traceFile;
};

}  // namespace fxsim
