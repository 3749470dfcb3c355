// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Frames as a host sends and gets them, for every test that talks to a simulated PLC by bytes.
// Their sums are literals, so that the tests and the simulator cannot be wrong together.

#pragma once

#include <QByteArray>

// STX, content, ETX, sum.
inline QByteArray frame(const char* content, const char* sum)
{
    return '\x02' + QByteArray(content) + '\x03' + sum;
}

// D100 and D101: four bytes at 0x10C8.
inline const QByteArray readD100 = frame("010C804", "73");
inline const QByteArray zerosOfD100 = frame("00000000", "83");
inline const QByteArray writeD100 = frame("110C80412345678", "18");
inline const QByteArray valueOfD100 = frame("12345678", "A7");
inline const QByteArray damagedRead = frame("010C804", "74");
