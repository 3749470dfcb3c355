// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/toml_text.h"

#include <QRegularExpression>
#include <QStringList>

namespace fxtools {

std::optional<TomlPlace> letterOutsideTexts(const QString& toml)
{
    static const QRegularExpression form(
        QStringLiteral(R"form("{3}(?:[^"\\]|\\.|"(?!""))*+"{3}|'{3}(?:[^']|'(?!''))*+'{3}|)form"
                       R"form("(?:[^"\\\n]|\\.)*+"|'[^'\n]*+'|#[^\n]*+|([^\x00-\x7F]))form"),
        QRegularExpression::DotMatchesEverythingOption);
    QRegularExpressionMatchIterator found = form.globalMatch(toml);
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        if (match.capturedLength(1) <= 0)
            continue;
        const QStringList lines = toml.left(match.capturedStart()).split('\n');
        return TomlPlace{lines.size(), lines.last().size() + 1, match.captured()};
    }
    return std::nullopt;
}

}  // namespace fxtools
