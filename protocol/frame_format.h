// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Facts of FX programming-port frames. Numbers travel as upper-case hexadecimal digits, most
// significant first, but for the two bytes of a force address, which come low byte first. The sum
// is the low byte of the sum of all bytes behind STX, ETX included.
//
//   read        STX "0" address(4) byteCount(2) ETX sum(2)        -> STX data(2 a byte) ETX sum(2)
//   word write  STX "1" address(4) byteCount(2) data(2 a byte) ETX sum(2)   -> ACK
//   force       STX "7" or "8" addressLow(2) addressHigh(2) ETX sum(2)      -> ACK

#ifndef PROTOCOL_FRAME_FORMAT_H
#define PROTOCOL_FRAME_FORMAT_H

constexpr unsigned char stx = 0x02;
constexpr unsigned char etx = 0x03;
constexpr unsigned char ack = 0x06;

constexpr unsigned char readCommand = '0';
constexpr unsigned char wordWriteCommand = '1';
constexpr unsigned char forceOnCommand = '7';
constexpr unsigned char forceOffCommand = '8';

constexpr int charsPerByte = 2;

constexpr int frameTail = 1 + 2;                         // ETX, sum
constexpr int frameEnds = 1 + frameTail;                 // STX and tail
constexpr int readFrameLength = frameEnds + 1 + 4 + 2;   // and command, address, byte count
constexpr int forceFrameLength = frameEnds + 1 + 2 + 2;  // and command, address low and high
constexpr int emptyWriteLength = readFrameLength;        // a word write without its data

constexpr int ackLength = 1;
constexpr int replyDataStart = 1;                                // after STX
constexpr int shortestReadReply = frameEnds + 1 * charsPerByte;  // of one byte

constexpr int bitsPerByte = 8;

#endif
