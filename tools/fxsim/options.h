// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The command line of fxsim as typed settings.

#pragma once

#include "tools/fxsim/line/simulator.h"
#include "tools/fxsim/plc/error.h"

#include <QHostAddress>
#include <QString>
#include <QVector>

#include <optional>

namespace fxsim {

struct TcpAddress
{
    QHostAddress address = QHostAddress(QHostAddress::LocalHost);
    quint16 port = 8888;
};

// The defaults are in the texts of the options, so that --help prints what counts.
struct Options
{
    Settings settings;

    bool pty = false;
    QString linkPath;
    std::optional<TcpAddress> tcp;
    QString serialDevice;

    QVector<AddressRange> present;  // none: that of the model
    QVector<AddressRange> missing;
    QVector<MirrorWindow> mirrors;
    QString program;  // "sample", "none" or a file
    QString loadPath;
    QString savePath;

    bool trace = false;
    QString tracePath;  // empty: standard error
    bool force = false;
    bool stats = false;
    bool view = false;
    QString controlPath;
    QString tellCommand;      // for the simulator that listens there; then nothing else is done
    bool noCommands = false;  // from standard input
};

// Nothing when the command line asked for a text, which has been printed. Throws an Error.
std::optional<Options> parseOptions(int argumentCount, const char* const* arguments);

}  // namespace fxsim
