// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Control of a simulated PLC beside the link: commands such as "faults silence=0.1" or
// "poke 0x1000 12". They go to the control socket of a running simulator, or directly to the one
// inside.

#pragma once

#include <QLocalSocket>
#include <QString>

namespace fxtools {

class BenchControl
{
public:
    virtual ~BenchControl() = default;

    // Returns when the command has been executed; throws Failure if it was not.
    virtual void run(const QString& command) = 0;
};

class SocketBenchControl : public BenchControl
{
public:
    explicit SocketBenchControl(const QString& path);  // throws Failure

    void run(const QString& command) override;

private:
    QLocalSocket m_socket;
};

}  // namespace fxtools
