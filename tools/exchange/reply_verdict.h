// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What came back, judged from outside: the driver says only "accepted" or "rejected", but to find a
// wrong cable one must know whether there was silence, a refusal or noise. Pure functions over the
// bytes; statistics, reports and `doctor` build on them.

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
    Incomplete,  // it stopped too early
    TooLong,     // more bytes than the reply can have
    HighBits,    // bit 7 set: the data bits or parity of the two ends differ
    Echo,        // what was sent came back
    NotAFrame,   // no STX, or no ETX where it belongs
    Surrounded,  // the right reply, among other characters
    Babble,      // the line is never quiet: something sends without being asked
    WrongSum,    // a frame, damaged on the way
    Late,        // correct, but after the time-out: discarded
    LinkLost,    // the link was lost before the reply
    Interrupted  // the user interrupted before the reply
};

const QVector<ReplyVerdict>& allVerdicts();

ReplyVerdict judgeReply(const FRAME_PRO& frame, const QByteArray& reply);

// The right reply among other characters: data whose sum is right, or an ACK without a NAK. Empty
// if there is none, or if there are two that differ.
QByteArray rightReplyIn(const FRAME_PRO& frame, const QByteArray& bytes);

// A few words for people, and one word for columns and files.
QString verdictText(ReplyVerdict verdict);
QString verdictName(ReplyVerdict verdict);

// The request as it is sent.
QByteArray requestBytes(const FRAME_PRO& frame);

}  // namespace fxtools
