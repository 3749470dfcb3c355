// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Bytes in tests: printed readably, written as hex, and as the frames of a host, whose sums are
// literals, so that the tests and the simulator cannot be wrong together. And the texts of errors.

#pragma once

#include "tools/fxsim/plc/error.h"

#include <QByteArray>
#include <QString>

#include <ostream>

inline void PrintTo(const QByteArray& bytes, std::ostream* out)
{
    *out << '"' << bytes.toPercentEncoding(" :.,<>|()").toStdString() << '"';
}

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

// For messages that a test adds to an expectation.
inline std::ostream& operator<<(std::ostream& out, const QByteArray& bytes)
{
    PrintTo(bytes, &out);
    return out;
}

inline QByteArray fromHex(const char* hex)
{
    return QByteArray::fromHex(hex);
}

// Of the Error that a call throws.
template <typename Call>
QString errorText(const Call& call)
{
    try {
        call();
    } catch (const fxsim::Error& error) {
        return error.text();
    }
    return "no error";
}

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
