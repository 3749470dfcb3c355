// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The configuration file: PLCs with names, so that a link is written down once.
//
//   default = "press1"                          # without --link, --plc and FX_LINK
//   tags = "tags.csv"                           # of all PLCs, or below of one
//
//   [plc.press1]
//   link = "serial:/dev/ttyUSB0?baud=9600"
//   timeout = "0.5s"                            # or in ms: 500
//   retries = 2                                 # also reconnect-s, station and words

#pragma once

#include "tools/link/link_settings.h"

#include <QVector>

namespace fxtools {

struct ConfiguredPlc
{
    QString name;  // empty: it is not in the file
    LinkSettings link;
    std::optional<int> timeoutMs, retries, reconnectS;
    QString tags = {};  // the tag file; empty: none
};

struct Configuration
{
    QString file;
    QVector<ConfiguredPlc> plcs;
    QString defaultPlc;  // empty: none

    QStringList names() const;
    const ConfiguredPlc* find(const QString& name) const;  // null: none of this name
};

// What is wrong in the file is named with its line and column. Throws Failure.
Configuration readConfiguration(const QString& file);

// $XDG_CONFIG_HOME/fxhost/config.toml, by default in ~/.config.
QString usualConfigurationFile();

// Each is empty if it is not given.
struct PlcWish
{
    QString link;
    QString plc;   // a name of the file
    QString file;  // empty: the usual one
};

// The PLC that is meant: by its link, by its name, by FX_LINK, or as the default of the file, in
// this order; nothing if nothing says. Throws Failure.
std::optional<ConfiguredPlc> meantPlc(const PlcWish& wish);

}  // namespace fxtools
