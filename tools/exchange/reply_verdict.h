// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What came back, in plain words, judged from the outside: the driver says only "accepted" or
// "rejected", but whoever looks for a wrong cable wants to know whether there was silence, a
// refusal or noise. Pure functions over the bytes; statistics, reports and `doctor` build on them.

#pragma once

#include "driver/intf.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace fxtools {

constexpr char stx = 0x02;
constexpr char etx = 0x03;
constexpr char enq = 0x05;
constexpr char ack = 0x06;
constexpr char nak = 0x15;

enum class ReplyVerdict
{
    Good,
    Silence,     // nothing at all within the time-out
    Refused,     // the PLC answered NAK
    Incomplete,  // it began, and stopped too early
    TooLong,     // more bytes than the answer can have
    HighBits,    // bit 7 set: the two ends disagree about data bits and parity
    Echo,        // what was sent came back
    NotAFrame,   // no STX, or no ETX where it belongs
    WrongSum,    // a frame, damaged on the way
    Late,        // right, but after the time-out: thrown away
    LinkLost,    // the link went away before the answer came
    Interrupted  // the user wanted an end before the answer came
};

const QVector<ReplyVerdict>& allVerdicts();

ReplyVerdict judgeReply(const FRAME_PRO& frame, const QByteArray& reply);

// A few words for people, and one word for columns and files.
QString verdictText(ReplyVerdict verdict);
QString verdictName(ReplyVerdict verdict);

// The request as it goes over the line.
QByteArray requestBytes(const FRAME_PRO& frame);

}  // namespace fxtools
