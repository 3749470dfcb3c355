// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Output for people: plain lines anywhere, colours and redrawing only on a terminal, and no colours
// if NO_COLOR is set. On a terminal whose locale is not UTF-8, ASCII stands for other characters.
// Everything that a command prints for people goes through here. The cursor is never hidden, so it
// cannot stay hidden when the program ends.

#pragma once

#include <QString>
#include <QStringList>

namespace fxtools {

struct ScreenSize
{
    int columns = 80;
    int rows = 24;

    bool operator==(const ScreenSize& other) const
    {
        return columns == other.columns && rows == other.rows;
    }
};

class Console
{
public:
    Console();  // standard output

    static ScreenSize size();

    bool isTerminal() const { return m_isTerminal; }

    void line(const QString& text = {}) { lines({text}); }
    void lines(const QStringList& texts);
    void paragraph(const QString& text, int indent = 0);  // wrapped if this is a terminal
    void heading(const QString& text);

    QString bold(const QString& text) const { return styled(text, "1"); }
    QString dim(const QString& text) const { return styled(text, "2"); }
    QString good(const QString& text) const { return styled(text, "32"); }
    QString bad(const QString& text) const { return styled(text, "1;31"); }
    QString changed(const QString& text) const { return styled(text, "1;33"); }

    // Draws over the last drawing, or below it if this is not a terminal. On a terminal, lines are
    // cut to its width, and a drawing that is too tall loses lines above the last one. Nothing is
    // written if it is there already.
    void redraw(const QStringList& lines);
    void endRedraw();

    // A bar that grows; without a terminal one line when it is full.
    void progress(const QString& label, int done, int total);

    // Moves the terminal to the beginning of a line if it is not there.
    static void settle();

private:
    QString styled(const QString& text, const char* code) const;

    bool m_isTerminal;
    bool m_hasColours;
};

// One line on standard error, below what is being drawn.
void complain(const QString& text);

// Asks on the terminal; "y" or "yes" is yes, anything else no. Throws Failure if standard input is
// not a terminal, because then only --yes can answer, and if the user interrupts.
bool isConfirmed(const QString& question);

}  // namespace fxtools
