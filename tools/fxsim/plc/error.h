// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How every part of the simulator reports what it cannot do: it throws an Error, which carries one
// sentence for the user. The program prints it and ends with its exit code; a control command
// answers with it.

#pragma once

#include <QString>

#include <stdexcept>

namespace fxsim {

enum class ExitCode
{
    Good = 0,
    Usage = 2,
    Link = 3,
    File = 7,
};

class Error : public std::runtime_error
{
public:
    Error(ExitCode code, const QString& text) : std::runtime_error(text.toStdString()), m_code(code)
    {}

    ExitCode code() const { return m_code; }
    QString text() const { return QString::fromUtf8(what()); }

    // The same with the place where it happened in front: "plant.json: line 3: ...".
    Error at(const QString& place) const { return {m_code, place + ": " + text()}; }

private:
    ExitCode m_code;
};

// A text from outside as an error may quote it: short, and without what would upset a terminal.
inline QString quotable(const QString& text)
{
    constexpr int longest = 60;
    QString shown = text.size() > longest ? text.left(longest - 3) + "..." : text;
    for (QChar& character : shown) {
        if (!character.isPrint())
            character = '?';
    }
    return shown;
}

// For a text that somebody wrote: "invalid speed 'fast': expected 0 or 300 to 4000000".
inline Error invalid(const char* what, const QString& text, const QString& expected)
{
    return {ExitCode::Usage,
            QString("invalid %1 '%2': expected %3").arg(what, quotable(text), expected)};
}

}  // namespace fxsim
