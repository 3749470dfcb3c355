// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The command line of fxsim, taken apart and checked. What is wrong with it is said on standard
// error in one line.

#pragma once

#include "tools/fxsim/line/simulator.h"

#include <QHostAddress>
#include <QString>
#include <QVector>

namespace fxsim {

enum ExitCode
{
    exitGood = 0,
    exitUsage = 2,
    exitLink = 3,
    exitFile = 7,
};

constexpr quint16 defaultPort = 8888;

struct Options
{
    Settings settings;

    QString linkPath;
    QHostAddress tcpAddress = QHostAddress(QHostAddress::LocalHost);
    QString serialDevice;

    QVector<AddressRange> present;
    QVector<AddressRange> missing;
    QVector<MirrorWindow> mirrors;
    QString program;  // "sample", "none" or a file
    QString loadPath;
    QString savePath;

    QString tracePath;  // empty: standard error
    QString controlPath;
    QString tellCommand;  // for the simulator that listens there; then nothing else is done

    quint16 tcpPort = defaultPort;
    bool pty = false;
    bool tcp = false;
    bool trace = false;
    bool stats = false;
    bool commands = true;  // from standard input
};

struct ParsedOptions
{
    Options options;
    bool runs = false;        // otherwise there is nothing more to do than to end
    int exitCode = exitGood;  // with this
};

ParsedOptions parseOptions(int argumentCount, char** arguments);

}  // namespace fxsim
