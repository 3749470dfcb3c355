// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Makes the link that its settings describe.

#pragma once

#include "tools/link/link.h"
#include "tools/link/link_settings.h"

#include <QLocalSocket>
#include <QString>

#include <memory>

namespace fxtools {

// Control of a simulated PLC beside the link: commands such as "faults silence=0.1" or
// "poke 0x1000 12". They go to the control socket of a running simulator, or directly to the one
// inside.
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

struct MadeLink
{
    std::unique_ptr<Link> link;  // not yet open
    BenchControl* control =
        nullptr;  // of a PLC that is simulated inside; lives as long as its link
};

// Throws Failure if the fault plan of a simulated PLC is invalid.
MadeLink makeLink(const LinkSettings& settings);

}  // namespace fxtools
