// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The serial ports of this machine, and who uses them.

#pragma once

#include <QString>
#include <QVector>

namespace fxtools {

struct PortInfo
{
    QString path;
    QString adapter;  // what the USB adapter calls itself; empty if it is none
    QString usedBy;   // as holderOf() has it
};

QVector<PortInfo> serialPorts();

// Another process that has this device open: "minicom (process 123)". Empty if there is none, or if
// it belongs to another user.
QString holderOf(const QString& path);

}  // namespace fxtools
