// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A simulated PLC inside this process, with the sample program running in it, so that every
// example works without hardware. Nothing but bytes passes between it and the rest of the host.

#pragma once

#include "tools/fxsim/control/control.h"
#include "tools/fxsim/line/paced_line.h"
#include "tools/fxsim/line/session.h"
#include "tools/fxsim/plc/sample_program.h"
#include "tools/link/link.h"
#include "tools/simulated/bench_control.h"

namespace fxtools {

class SimLink : public Link, public BenchControl
{
public:
    explicit SimLink(const fxsim::Settings& settings);

    QString name() const override;
    void open() override;
    bool isOpen() const override { return m_session != nullptr; }
    bool send(const QByteArray& bytes) override;
    QByteArray receive(int timeoutMs) override;

    void run(const QString& command) override;

private:
    void waitForBytes(qint64 untilUs);

    fxsim::Clock m_clock;
    fxsim::Simulator m_plc;
    fxsim::Control m_control;
    std::unique_ptr<fxsim::Session> m_session;
};

}  // namespace fxtools
