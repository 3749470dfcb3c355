// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Google Test prints byte arrays readably, and tests write hex where characters say little.

#pragma once

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
