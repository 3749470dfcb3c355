// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which recipes are in the PLC by half, as far as that was known last. Each change goes to a file
// at once, so that it is known too after the window was closed, or killed, in the middle.

#pragma once

#include <QMap>
#include <QString>

namespace fxview {

class RecipeNotes
{
public:
    RecipeNotes() = default;  // nothing is kept after the end

    // Reads what the file holds from before.
    explicit RecipeNotes(const QString& path);

    // What is said of a recipe replaces what was; empty: it is whole. Where nothing is known to be
    // written, it stands before what was known already; empty: nothing was. Returns why it cannot
    // be kept, or nothing.
    QString set(const QString& recipe, const QString& text, bool isNoneKnownWritten = false);
    QString clear();

    QString text() const;  // of all recipes, a line each

private:
    QString write() const;

    QString m_path;
    QMap<QString, QString> m_texts;    // by recipe
    QMap<QString, QString> m_written;  // the newest of an attempt that wrote something
};

}  // namespace fxview
