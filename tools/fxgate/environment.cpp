// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/environment.h"

#include "tools/fxgate/bus/broker_connection.h"
#include "tools/fxgate/workers/worker_process.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QRandomGenerator>

namespace fxgate {

Environment realEnvironment()
{
    return {[]() -> Moment {
                return {QDateTime::currentMSecsSinceEpoch(), QDeadlineTimer::current().deadline()};
            },
            [] { return QRandomGenerator::global()->generateDouble(); },
            [](const QString& program, const QStringList& arguments) {
                return std::make_unique<WorkerProcess>(program, arguments);
            },
            [](const BrokerSettings& broker, const QString& clientId, const Message& will) {
                return std::make_unique<BrokerConnection>(broker, clientId, will);
            }};
}

}  // namespace fxgate
