// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A small plant for the tests of the bus: the link press1 with four tags, one of each kind.

#pragma once

#include "tools/fxgate/plant.h"

namespace gate_tests {

constexpr qint64 noon = 1795348800000;  // 2026-11-22T12:00:00Z

inline fxgate::ServedTag served(const QString& name, fxgate::ValueKind kind,
                                bool isWritable = false)
{
    fxgate::ServedTag tag;
    tag.name = name;
    tag.kind = kind;
    tag.isWritable = isWritable;
    return tag;
}

inline fxgate::LinkView pressView()
{
    fxgate::LinkView view;
    view.isUp = true;
    view.sinceMs = noon;
    view.tags = {served("flow", fxgate::ValueKind::Real), served("pump", fxgate::ValueKind::Bit),
                 served("count", fxgate::ValueKind::Integer, true),
                 served("batch", fxgate::ValueKind::Text, true)};
    view.tags[0].unit = "l/min";
    view.samples = {{"flow", {12.5, fxgate::Quality::Good, {}, noon - 3}},
                    {"pump", {true, fxgate::Quality::Good, {}, noon - 2}},
                    {"count", {-2, fxgate::Quality::Good, {}, noon - 1}},
                    {"batch", {"A7", fxgate::Quality::Good, {}, noon}}};
    return view;
}

inline fxgate::Change change(const QString& tag, const QJsonValue& value, qint64 timeMs,
                             fxgate::Quality quality = fxgate::Quality::Good,
                             const QString& reason = {})
{
    return {"press1", tag, {value, quality, reason, timeMs}};
}

}  // namespace gate_tests
