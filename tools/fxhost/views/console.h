// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Where texts for people go: plain lines anywhere, colours and redrawing in place on a terminal
// only, and no colours there either when NO_COLOR is set. Everything that a command prints for
// people passes here. The cursor is never hidden, so that no end of the program can leave it so.

#pragma once

#include <QString>
#include <QStringList>

namespace fxtools {

class Console
{
public:
    Console();  // standard output

    bool isTerminal() const { return m_isTerminal; }

    void line(const QString& text = {});
    void heading(const QString& text);

    QString bold(const QString& text) const { return styled(text, "1"); }
    QString dim(const QString& text) const { return styled(text, "2"); }
    QString good(const QString& text) const { return styled(text, "32"); }
    QString bad(const QString& text) const { return styled(text, "1;31"); }
    QString changed(const QString& text) const { return styled(text, "1;33"); }

    // Draws over what was drawn last, or below it where nothing can be drawn over. On a terminal
    // lines are cut at its width, and what is too tall for it loses lines above the last one.
    void redraw(const QStringList& lines);
    void endRedraw();

    // A bar that grows; without a terminal one line when it is full.
    void progress(const QString& label, int done, int total);

    // Leaves the terminal at the beginning of a line, whatever stands there.
    static void settle();

private:
    QString styled(const QString& text, const char* code) const;

    bool m_isTerminal;
    bool m_hasColours;
};

// One line on standard error, below what is being drawn.
void complain(const QString& text);

}  // namespace fxtools
