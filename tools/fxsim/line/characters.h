// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The characters of the FX programming port: control characters, upper-case hex digits and the sum
// that ends a frame.

#pragma once

#include <QByteArray>

#include <string_view>

namespace fxsim {

constexpr char stx = 0x02;
constexpr char etx = 0x03;
constexpr char enq = 0x05;
constexpr char ack = 0x06;
constexpr char nak = 0x15;

constexpr int sumDigits = 2;

// -1 when the character is not a digit; the port speaks upper case only.
int hexDigitValue(char digit);

// The number that up to four digits spell, or -1 when one of them is not a digit.
int hexNumber(std::string_view digits);

QByteArray hexOfBytes(const QByteArray& bytes);  // two digits a byte
QByteArray bytesOfHex(std::string_view digits);  // digits that were checked before

// The sum over everything after STX up to ETX, both given to it; a frame ends with its two digits.
quint8 sumOf(std::string_view fromCommandToEtx);

QByteArray framed(const QByteArray& content);  // STX, content, ETX, sum

}  // namespace fxsim
