// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A screen made of the tags alone, in their order: what can be written as switches and numeric
// entries, all else as lamps, numeric displays and texts. Of very many tags the first.

#pragma once

#include "tools/fxview/screens/screen.h"

namespace fxview {

Screen plainScreen(const QVector<fxtools::Tag>& tags);
QString plainScreenText(const QVector<fxtools::Tag>& tags);  // as a file

}  // namespace fxview
