// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the gateway gets from outside: the time, chance, workers and connections. A test can be all
// of it.

#pragma once

#include "tools/fxgate/bus/connection.h"
#include "tools/fxgate/configuration.h"
#include "tools/fxgate/moment.h"
#include "tools/fxgate/workers/worker.h"

#include <memory>

namespace fxgate {

struct Environment
{
    std::function<Moment()> now;
    std::function<double()> chance;  // from 0 to 1
    std::function<std::unique_ptr<Worker>(const QString& program, const QStringList& arguments)>
        makeWorker;
    std::function<std::unique_ptr<Connection>(const BrokerSettings& broker, const QString& clientId,
                                              const Message& will)>
        makeConnection;
};

Environment realEnvironment();

}  // namespace fxgate
