// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Statistics for people.

#pragma once

#include "host/statistics.h"

#include <QStringList>

namespace fxhost {

QStringList statisticsLines(const Statistics& statistics, qint64 elapsedUs);

}  // namespace fxhost
