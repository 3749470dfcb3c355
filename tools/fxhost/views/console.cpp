// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/console.h"

#include "tools/failure.h"
#include "tools/link/interrupt.h"
#include "tools/standard_streams.h"
#include "tools/table.h"

#include <QMap>

#include <algorithm>
#include <csignal>
#include <iostream>

#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace fxtools {

namespace {

constexpr int widestBar = 32;
constexpr int narrowestBar = 8;

// The unfinished output at the end of the terminal, which all consoles share.
struct Unfinished
{
    QStringList drawn;  // which the next redraw overwrites
    ScreenSize drawnOn;
    bool bar = false;     // the cursor is at the end of a bar
    bool echoed = false;  // what the terminal showed of Ctrl-C was ended by a new line
};
Unfinished unfinished;

bool isTerminal(int file)
{
    return isatty(file) == 1 && qgetenv("TERM") != "dumb";
}

// One character for one, so that columns stay where they are.
const QMap<QChar, char> asciiForms = {
    {u'○', '.'}, {u'●', '#'}, {u'░', '.'}, {u'█', '#'}, {u'▁', '_'}, {u'▂', '.'},
    {u'▃', '-'}, {u'▄', '~'}, {u'▅', '='}, {u'▆', '+'}, {u'▇', '*'}, {u'…', '~'},
    {u'✔', '+'}, {u'✘', 'x'}, {u'→', '>'}, {u'↑', '^'}, {u'↓', 'v'},
};

bool showsUtf8()
{
    static const bool isUtf8 = qstrcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    return isUtf8 || !isTerminal(STDOUT_FILENO);
}

void put(const QString& text)
{
    QString shown = text;
    if (!showsUtf8()) {
        for (QChar& character : shown) {
            if (character.unicode() > 0x7F)
                character = QLatin1Char(asciiForms.value(character, '?'));
        }
    }
    std::cout << shown.toStdString();
}

// Without a reader or with a full disk, a view would otherwise run on for ever.
void flush()
{
    const std::string problem = outputProblem();
    if (!problem.empty())
        throw Failure(ExitCode::File, QString::fromStdString(problem));
}

// As many lines as leave room for the cursor below them; the last one is always there.
QStringList shortened(const QStringList& lines, int most)
{
    if (lines.size() <= most || most < 3)
        return lines.mid(std::max(lines.size() - most, 0));
    QStringList kept = lines.mid(0, most - 2);
    kept += QStringLiteral("  … %1 not shown").arg(counted(lines.size() - kept.size() - 1, "line"));
    kept += lines.last();
    return kept;
}

QString barText(const QString& label, int done, int total, int columns)
{
    const QString numbers = QStringLiteral("%1/%2").arg(done).arg(total);
    const int left = columns - 1 - 2 - label.size() - 1 - 1 - numbers.size();
    if (left < narrowestBar)
        return QStringLiteral("  %1 %2").arg(label, numbers);
    const int width = std::min(left, widestBar);
    const int filled =
        total > 0 ? static_cast<int>(static_cast<qint64>(std::min(done, total)) * width / total)
                  : width;
    return QStringLiteral("  %1 %2%3 %4")
        .arg(label, QStringLiteral("█").repeated(filled),
             QStringLiteral("░").repeated(width - filled), numbers);
}

// Nothing is written behind a bar, which is drawn again below, or behind what Ctrl-C shows.
void endLine()
{
    const bool afterEcho = interruptSignal() == SIGINT && !unfinished.echoed;
    if (!isTerminal(STDOUT_FILENO) || !(unfinished.bar || afterEcho))
        return;
    put(afterEcho ? QStringLiteral("\n") : QStringLiteral("\r\x1b[K"));
    unfinished.bar = false;
    unfinished.echoed = afterEcho || unfinished.echoed;
}

constexpr int napMs = 20;  // how soon an interrupt is noticed, also one just before the waiting

QString typedLine()
{
    pollfd terminal = {STDIN_FILENO, POLLIN, 0};
    while (poll(&terminal, 1, napMs) <= 0) {
        if (interrupted())
            throw Failure(ExitCode::Interrupted, QStringLiteral("interrupted"));
    }
    QByteArray line;
    char character = 0;
    while (read(STDIN_FILENO, &character, 1) == 1 && character != '\n')
        line += character;
    return QString::fromUtf8(line).trimmed().toLower();
}

}  // namespace

Console::Console()
    : m_isTerminal(fxtools::isTerminal(STDOUT_FILENO)),
      m_hasColours(m_isTerminal && qgetenv("NO_COLOR").isEmpty())
{}

ScreenSize Console::size()
{
    winsize window = {};
    const bool isKnown =
        ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col > 0 && window.ws_row > 0;
    return isKnown ? ScreenSize{window.ws_col, window.ws_row} : ScreenSize();
}

void Console::lines(const QStringList& texts)
{
    endLine();
    put(texts.join('\n') + '\n');
    flush();
}

void Console::paragraph(const QString& text, int indent)
{
    lines(m_isTerminal ? wrapped(text, size().columns, indent) : QStringList(text));
}

void Console::heading(const QString& text)
{
    line();
    line(bold(text));
}

QString Console::styled(const QString& text, const char* code) const
{
    if (!m_hasColours || text.isEmpty())
        return text;
    return QStringLiteral("\x1b[%1m%2\x1b[0m").arg(QLatin1String(code), text);
}

void Console::redraw(const QStringList& lines)
{
    if (!m_isTerminal) {
        put((unfinished.drawn.isEmpty() ? "" : "\n") + lines.join('\n') + '\n');
        unfinished.drawn = lines;
        flush();
        return;
    }
    if (takeContinued())
        unfinished.drawn.clear();  // the shell has written below the table
    const ScreenSize on = size();
    QStringList shown;
    for (const QString& text : shortened(lines, on.rows - 1))
        shown += clipped(text, on.columns);
    if (on == unfinished.drawnOn && shown == unfinished.drawn)
        return;
    // A terminal that has changed its size may have wrapped its lines differently.
    if (!unfinished.drawn.isEmpty())
        put(on == unfinished.drawnOn ? QStringLiteral("\x1b[%1A").arg(unfinished.drawn.size())
                                     : QStringLiteral("\x1b[H\x1b[2J"));
    for (const QString& text : shown)
        put(text + "\x1b[K\n");
    put(QStringLiteral("\x1b[J"));
    unfinished.drawn = shown;
    unfinished.drawnOn = on;
    flush();
}

void Console::endRedraw()
{
    unfinished.drawn.clear();
}

void Console::progress(const QString& label, int done, int total)
{
    const bool full = done >= total;
    if (!m_isTerminal && !full)
        return;
    const QString text = barText(label, done, total, m_isTerminal ? size().columns : 80);
    put(m_isTerminal ? "\r" + text + "\x1b[K" : text);
    if (full)
        put(QStringLiteral("\n"));
    unfinished.bar = !full;
    flush();
}

void Console::settle()
{
    unfinished.drawn.clear();
    endLine();
    std::cout.flush();
}

void complain(const QString& text)
{
    QString lines;
    for (QString line : text.split('\n')) {
        for (QChar& character : line) {  // which may quote a binary file
            if (!character.isPrint())
                character = '?';
        }
        lines += "fxhost: " + line + '\n';
    }
    if (isTerminal(STDERR_FILENO))
        Console::settle();
    std::cerr << lines.toStdString() << std::flush;  // at once, as a whole
}

bool isConfirmed(const QString& question)
{
    if (isatty(STDIN_FILENO) == 0)
        throw Failure(ExitCode::Usage, question + " Standard input is not a terminal; use --yes");
    Console::settle();
    std::cerr << question.toStdString() << " [y/N] " << std::flush;
    const QString answer = typedLine();
    return answer == QLatin1String("y") || answer == QLatin1String("yes");
}

}  // namespace fxtools
