// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Single keys from the terminal, while nothing waits for them. The terminal gets its own settings
// back when the program ends, is stopped or is killed by a second Ctrl-C.

#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace fxtools {

struct Key
{
    enum class Kind
    {
        Character,
        Enter,
        Escape,
        Backspace,
        Up,
        Down,
        PageUp,
        PageDown,
        Home,
        End,
    };

    Kind kind = Kind::Character;
    QChar character;  // of Character
};

// The keys behind the bytes of a terminal; what is unknown is passed over.
QVector<Key> keysOf(const QByteArray& bytes);

// Whether the last key may not be complete: its bytes may come in two parts.
bool endsWithinKey(const QByteArray& bytes);

class Keyboard
{
public:
    Keyboard();  // does nothing if standard input is not a terminal
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    // What was pressed since the last call. Nothing while the program is in the background.
    QVector<Key> pressed();

private:
    bool m_isTerminal;
    QByteArray m_pending;  // of a key that is not complete
};

}  // namespace fxtools
