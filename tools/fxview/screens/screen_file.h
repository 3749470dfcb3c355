// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Screens as TOML files:
//
//   [[page]]
//   title = "Press 1"
//   columns = 12
//   rows = 8
//
//   [[page.lamp]]
//   tag = "motor.run"
//   row = 1
//   column = 1
//   width = 2
//
// docs/window.md has all elements and keys. An element with a mistake is left out; the others stay.

#pragma once

#include "tools/fxview/screens/screen.h"
#include "tools/toml_reader.h"

namespace fxview {

struct ScreenFile
{
    std::optional<Screen> screen;        // nothing: it cannot be read at all
    QVector<fxtools::Mistake> mistakes;  // all of them, by line
};

ScreenFile readScreenFile(const QString& path, const QVector<fxtools::Tag>& tags);

}  // namespace fxview
