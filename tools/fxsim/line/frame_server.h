// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Judges one whole frame and carries it out on the memory:
//
//   "0" address (4 digits), byte count (2)           read: STX, two digits a byte, ETX, sum
//   "1" address, byte count, two digits a byte       write: ACK
//   "7" bit address (4 digits, low byte first)       force on: ACK
//   "8" the same                                     force off: ACK
//   "4" or "B", then any fields                      ACK: programming software asks so whether it
//                                                    is connected
//
// A bad frame changes nothing. Sessions call this once for each frame.

#pragma once

#include "tools/fxsim/plc/plc_memory.h"

#include <QByteArray>

namespace fxsim {

enum class Verdict
{
    Good,
    WrongSum,
    UnknownCommand,
    Malformed,  // a wrong length, or a character that is no upper-case hex digit
    TooMany,    // more bytes than the PLC takes in one frame
    NoBytes,    // a byte count of zero
    NoMemory,   // the PLC does not have all of the range
};
constexpr int verdictKinds = static_cast<int>(Verdict::NoMemory) + 1;

const char* verdictText(Verdict verdict);

enum class Command : char
{
    None = 0,
    Read = '0',
    Write = '1',
    ForceOn = '7',
    ForceOff = '8',
    Question4 = '4',
    QuestionB = 'B',
};

// What a frame asked for, as far as it could be read.
struct Request
{
    Verdict verdict = Verdict::Malformed;
    Command command = Command::None;
    int address = 0;    // of a byte; of a bit for the two forces
    int byteCount = 0;  // 0 for the two forces
    QByteArray data;    // of a write
};

Request judgeFrame(const QByteArray& frame, const PlcMemory& memory, int maxBytes);

// Carries out a request that was judged good; returns the reply as it goes on the wire.
QByteArray carryOut(const Request& request, PlcMemory& memory);

// For the trace: "read 4 bytes at 0x10C8", "force on bit 0x0508 (byte 0x00A1 bit 0)".
QByteArray requestText(const Request& request);

}  // namespace fxsim
