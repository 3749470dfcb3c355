// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/environment.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QRandomGenerator>

namespace fxgate {

Environment realEnvironment()
{
    return {[]() -> Moment {
                return {QDateTime::currentMSecsSinceEpoch(), QDeadlineTimer::current().deadline()};
            },
            [] { return QRandomGenerator::global()->generateDouble(); }};
}

}  // namespace fxgate
