// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "plc_map.h"

#include <stdexcept>

namespace fxsoak {

namespace {

// clang-format off
const std::array<PlcRun, plcRunCount> runs = {{
    // type    first  count  bits  read    write   origin  writable
    {"X",          0,    64,    1, 0x0080, 0x0080,      0, false},
    {"Y",          0,    64,    1, 0x00A0, 0x00A0,      0, true},
    {"M",          0,   256,    1, 0x0100, 0x0100,      0, true},
    {"S",          0,   128,    1, 0x0000, 0x0000,      0, true},
    {"SM",      8000,    32,    1, 0x01E0, 0x01E0,   8000, true},
    {"T",          0,    64,    1, 0x00C0, 0x00C0,      0, true},
    {"C",          0,    32,    1, 0x01C0, 0x01C0,      0, true},
    {"D",          0,   200,   16, 0x1000, 0x1000,      0, true},
    {"SD",      8000,    32,   16, 0x0E00, 0x0F00,   8000, true},
    {"TV",         0,    40,   16, 0x0800, 0x0800,      0, true},
    {"CV",         0,    40,   16, 0x0A00, 0x0A00,      0, true},
    {"32CV",     200,    16,   32, 0x0C00, 0x0C00,    200, true},
}};
// clang-format on

}  // namespace

const std::array<PlcRun, plcRunCount>& plcRuns()
{
    return runs;
}

const PlcRun& plcRun(const QString& type)
{
    for (const PlcRun& run : runs) {
        if (type == QLatin1String(run.type))
            return run;
    }
    throw std::out_of_range("no run of type " + type.toStdString());
}

quint32 plcValue(const fxsim::PlcMemory& memory, const PlcRun& run, int number, Side side)
{
    const int base = side == Side::Read ? run.readBase : run.writeBase;
    const int offset = number - run.origin;
    if (run.isBit())
        return memory.bit(base + offset / bitsPerByte, offset % bitsPerByte) ? 1 : 0;
    const int bytes = run.bits / bitsPerByte;
    return memory.value(base + bytes * offset, bytes);
}

void setPlcValue(fxsim::PlcMemory& memory, const PlcRun& run, int number, quint32 value)
{
    const int offset = number - run.origin;
    const int bytes = run.bits / bitsPerByte;
    if (run.isBit())
        memory.setBit(run.readBase + offset / bitsPerByte, offset % bitsPerByte, value != 0);
    else
        memory.setValue(run.readBase + bytes * offset, bytes, value);
}

fxsim::MirrorWindow specialRegisters()
{
    const PlcRun& run = plcRun(QStringLiteral("SD"));
    return {run.writeBase, run.readBase, run.count * run.bits / bitsPerByte};
}

}  // namespace fxsoak
