// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/keyboard.h"

#include "tools/link/interrupt.h"

#include <QPair>

#include <algorithm>
#include <array>
#include <csignal>
#include <utility>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace fxtools {

namespace {

constexpr char escape = 0x1B;

// Of the terminal as it was found.
termios found = {};

bool ownsTerminal()
{
    return tcgetpgrp(STDIN_FILENO) == getpgrp();
}

void giveBack()
{
    tcsetattr(STDIN_FILENO, TCSANOW, &found);
}

// Keys come at once and are not shown; Ctrl-C and Ctrl-Z remain signals.
void take()
{
    termios settings = found;
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

extern "C" void stop(int)
{
    giveBack();
    kill(getpid(), SIGSTOP);
}

using Sequence = QPair<QByteArray, Key::Kind>;
const QVector<Sequence> sequences = {
    {"\x1b[A", Key::Kind::Up},    {"\x1b[B", Key::Kind::Down},    {"\x1bOA", Key::Kind::Up},
    {"\x1bOB", Key::Kind::Down},  {"\x1b[5~", Key::Kind::PageUp}, {"\x1b[6~", Key::Kind::PageDown},
    {"\x1b[H", Key::Kind::Home},  {"\x1b[F", Key::Kind::End},     {"\x1b[1~", Key::Kind::Home},
    {"\x1b[4~", Key::Kind::End},  {"\x1bOH", Key::Kind::Home},    {"\x1bOF", Key::Kind::End},
    {"\r", Key::Kind::Enter},     {"\n", Key::Kind::Enter},       {"\x7f", Key::Kind::Backspace},
    {"\b", Key::Kind::Backspace},
};

// The length of an escape sequence that is not known here.
int unknownLength(const QByteArray& bytes)
{
    int length = 2;
    while (length < bytes.size() && (bytes[length] < '@' || bytes[length] > '~'))
        ++length;
    return length + 1;
}

}  // namespace

QVector<Key> keysOf(const QByteArray& bytes)
{
    QVector<Key> keys;
    QByteArray rest = bytes;
    while (!rest.isEmpty()) {
        const auto known =
            std::find_if(sequences.begin(), sequences.end(),
                         [&rest](const Sequence& one) { return rest.startsWith(one.first); });
        int taken = 1;
        if (known != sequences.end()) {
            keys.append({known->second, {}});
            taken = known->first.size();
        } else if (rest[0] == escape && rest.size() > 1 && (rest[1] == '[' || rest[1] == 'O')) {
            taken = unknownLength(rest);
        } else if (rest[0] == escape) {
            keys.append({Key::Kind::Escape, {}});
        } else if (rest[0] >= ' ' && rest[0] <= '~') {
            keys.append({Key::Kind::Character, QLatin1Char(rest[0])});
        }
        rest.remove(0, taken);
    }
    return keys;
}

bool endsWithinKey(const QByteArray& bytes)
{
    const QByteArray last = bytes.mid(std::max(bytes.lastIndexOf(escape), 0));
    const bool isSequence = last.size() > 1 && (last[1] == '[' || last[1] == 'O');
    return last.startsWith(escape) &&
           (last.size() == 1 || (isSequence && unknownLength(last) > last.size()));
}

Keyboard::Keyboard() : m_isTerminal(tcgetattr(STDIN_FILENO, &found) == 0)
{
    if (!m_isTerminal)
        return;
    beforeKill(giveBack);
    struct sigaction action = {};
    action.sa_handler = stop;
    action.sa_flags = SA_RESTART;
    sigaction(SIGTSTP, &action, nullptr);
}

Keyboard::~Keyboard()
{
    if (m_isTerminal && ownsTerminal())
        giveBack();
}

QVector<Key> Keyboard::pressed()
{
    if (!m_isTerminal || !ownsTerminal())
        return {};
    termios now = {};
    if (tcgetattr(STDIN_FILENO, &now) == 0 && (now.c_lflag & ICANON) != 0)
        take();  // at the start, and when the program was stopped and goes on
    pollfd waiting = {STDIN_FILENO, POLLIN, 0};
    std::array<char, 64> buffer = {};
    const ssize_t byteCount =
        poll(&waiting, 1, 0) > 0 ? read(STDIN_FILENO, buffer.data(), buffer.size()) : 0;
    if (byteCount > 0)
        m_pending.append(buffer.data(), static_cast<int>(byteCount));
    if (byteCount > 0 && endsWithinKey(m_pending))
        return {};  // the rest, if there is one, comes before the next call
    return keysOf(std::exchange(m_pending, QByteArray()));
}

}  // namespace fxtools
