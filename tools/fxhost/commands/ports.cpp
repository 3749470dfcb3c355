// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost ports: the serial ports of this machine, and who uses them.

#include "tools/link/ports.h"
#include "tools/fxhost/commands/command.h"
#include "tools/fxhost/views/console.h"

namespace fxtools {

void showPorts(const OutputOptions& output)
{
    const QVector<PortInfo> ports = serialPorts();
    if (ports.isEmpty() && output.mode == OutputMode::People) {
        Console().line(QStringLiteral("  no serial ports; is the adapter plugged in?"));
        return;
    }
    Records records(output, {{"port"}, {"adapter"}, {"used by"}});
    for (const PortInfo& port : ports)
        records.add({port.path, port.adapter, port.usedBy});
    records.finish();
}

void addPortsCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("ports", "List serial ports and who uses them");
    addExamples(*command, {"fxhost ports"});
    onRun(*command, action, [&common] {
        showPorts(common.output);
        return ExitCode::Good;
    });
}

}  // namespace fxtools
