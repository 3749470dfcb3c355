// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Frames as a host sends and gets them for D100 and D101 (four bytes at 0x10C8), for every test
// that talks to a simulated PLC by bytes.

#pragma once

#include <QByteArray>

inline const QByteArray readD100 = "\x02"
                                   "010C804"
                                   "\x03"
                                   "73";
inline const QByteArray zerosOfD100 = "\x02"
                                      "00000000"
                                      "\x03"
                                      "83";
inline const QByteArray writeD100 = "\x02"
                                    "110C80412345678"
                                    "\x03"
                                    "18";
inline const QByteArray valueOfD100 = "\x02"
                                      "12345678"
                                      "\x03"
                                      "A7";
inline const QByteArray damagedRead = "\x02"
                                      "010C804"
                                      "\x03"
                                      "74";
