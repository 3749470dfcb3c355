// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// JSON from others on the bus: a value, or an object of values.

#pragma once

#include <QByteArray>
#include <QJsonValue>

#include <optional>

namespace fxgate {

constexpr int mostJsonBytes = 4096;

// Nothing if it is neither, or too long. What is nested is not even parsed: Qt 5.15 never frees a
// list that an object names twice, so anybody could fill the memory.
std::optional<QJsonValue> flatJson(const QByteArray& payload);

}  // namespace fxgate
