// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a PLC says of itself in its special registers, and the memory that each model has:
//
//   M8000, M8001    on while running, on while stopped
//   M8002, M8003    on in the first scan of a run, on after it
//   M8011-M8014     clocks of 10 ms, 100 ms, 1 s and 1 min
//   D8000           the watchdog time: 200 ms
//   D8001, D8002    type and version: 22210 is type 22, version 2.10; program memory in K steps
//   D8010-D8012     the scan time now, its minimum and maximum, in tenths of a millisecond
//   D8013-D8019     its clock: second, minute, hour, day, month, year of the century, day of the
//                   week (0 is Sunday)

#pragma once

#include "tools/fxsim/plc/plc_memory.h"

#include <QDateTime>
#include <QString>

namespace fxsim {

struct Model
{
    const char* name;
    int version;  // as in D8001
    int programSteps;
    const char* memory;  // ranges of devices and addresses
};

const Model& findModel(const QString& name);  // throws an Error that lists them

PlcMemory memoryOf(const Model& model);  // at power-on

struct PlcState
{
    bool isRunning = true;
    qint64 poweredMs = 0;  // since power-on
    qint64 inStateMs = 0;  // since it runs, or is stopped
    int scanMs = 1;
};
void showState(PlcMemory& memory, const PlcState& state);
void showTime(PlcMemory& memory, const QDateTime& time);

}  // namespace fxsim
