// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/simulated/make_link.h"

#include "tools/link/serial_link.h"
#include "tools/link/tcp_link.h"
#include "tools/simulated/sim_link.h"

namespace fxtools {

namespace {

fxsim::Settings simulatorSettings(const SimulatedSettings& simulated)
{
    fxsim::Settings settings;
    try {
        settings.faults = fxsim::parseFaults(simulated.faults);
    } catch (const fxsim::Error& error) {
        throw Failure(ExitCode::Usage,
                      "invalid link '" + linkText(simulated) + "': " + error.text());
    }
    settings.model = &fxsim::findModel("any");
    settings.startedAt = QDateTime::currentDateTime();
    settings.timing.baud = simulated.baud.value_or(settings.timing.baud);
    return settings;
}

MadeLink make(const SimulatedSettings& settings)
{
    auto link = std::make_unique<SimLink>(simulatorSettings(settings));
    BenchControl* const control = link.get();
    return {std::move(link), control};
}

MadeLink make(const SerialSettings& settings)
{
    return {std::make_unique<SerialLink>(settings), nullptr};
}

MadeLink make(const TcpSettings& settings)
{
    return {std::make_unique<TcpLink>(settings), nullptr};
}

}  // namespace

MadeLink makeLink(const LinkSettings& settings)
{
    return std::visit([](const auto& kind) { return make(kind); }, settings);
}

}  // namespace fxtools
