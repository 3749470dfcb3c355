// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// An error: a line for the user and an exit code. Every floor throws only this, so a program
// catches one type in one place.

#pragma once

#include <QString>

#include <stdexcept>

namespace fxtools {

// Documented in the manual page; scripts rely on them.
enum class ExitCode
{
    Good = 0,
    SomeFailed = 1,
    Usage = 2,
    LinkNotOpened = 3,
    Silence = 4,
    Refused = 5,
    Damaged = 6,
    File = 7,
    Interrupted = 130,
};

class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, const QString& text)
        : std::runtime_error(text.toStdString()), m_code(code)
    {}

    ExitCode code() const { return m_code; }
    QString text() const { return QString::fromUtf8(what()); }

private:
    ExitCode m_code;
};

}  // namespace fxtools
