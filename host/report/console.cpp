// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See console.h.

#include "host/report/console.h"

#include <algorithm>
#include <iostream>

#include <unistd.h>

namespace fxhost {

namespace {

constexpr int barWidth = 32;

void put(const QString& text)
{
    std::cout << text.toStdString();
}

}  // namespace

Console::Console() : m_isTerminal(isatty(STDOUT_FILENO) == 1 && qgetenv("TERM") != "dumb") {}

void Console::line(const QString& text)
{
    put(text + '\n');
    std::cout.flush();
}

void Console::heading(const QString& text)
{
    line();
    line(bold(text));
}

QString Console::styled(const QString& text, const char* code) const
{
    if (!m_isTerminal || text.isEmpty())
        return text;
    return QStringLiteral("\x1b[%1m%2\x1b[0m").arg(QLatin1String(code), text);
}

void Console::redraw(const QStringList& lines)
{
    if (m_drawnLines > 0)
        put(m_isTerminal ? QStringLiteral("\x1b[%1A").arg(m_drawnLines) : QStringLiteral("\n"));
    const QString clearRest = m_isTerminal ? QStringLiteral("\x1b[K") : QString();
    for (const QString& text : lines)
        put(text + clearRest + '\n');
    m_drawnLines = lines.size();
    std::cout.flush();
}

void Console::progress(const QString& label, int done, int total)
{
    const bool full = done >= total;
    if (!m_isTerminal && !full)
        return;
    const int filled = total > 0 ? std::min(done, total) * barWidth / total : barWidth;
    const QString bar =
        QStringLiteral("█").repeated(filled) + QStringLiteral("░").repeated(barWidth - filled);
    const QString text = QStringLiteral("  %1 %2 %3/%4").arg(label, bar).arg(done).arg(total);
    put(m_isTerminal ? "\r" + text + "\x1b[K" : text);
    if (full)
        put(QStringLiteral("\n"));
    std::cout.flush();
}

}  // namespace fxhost
