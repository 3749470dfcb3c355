// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What must be known of a TOML text before it is parsed.

#pragma once

#include <QString>

#include <optional>

namespace fxtools {

struct TomlPlace
{
    int line;    // from 1 on
    int column;  // from 1 on
    QString character;
};

// Outside of texts and comments TOML is ASCII. For some other characters there toml++ 3.3 runs into
// what its compiler may take for impossible, so a text that has one must not be parsed.
std::optional<TomlPlace> letterOutsideTexts(const QString& toml);

}  // namespace fxtools
