// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/quoted.h"

#include "tools/failure.h"

namespace fxtools {

QString quoted(const QString& text, int mostCharacters)
{
    QString shown = text;
    if (shown.size() > mostCharacters)
        shown = shown.left(mostCharacters - 1) + QStringLiteral("…");
    for (QChar& character : shown) {
        if (!character.isPrint())
            character = '?';
    }
    return '\'' + shown + '\'';
}

void reject(const QString& text, const QString& reason)
{
    throw Failure(ExitCode::Usage, quoted(text) + ' ' + reason);
}

}  // namespace fxtools
