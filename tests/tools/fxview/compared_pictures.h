// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Pictures that are the same but for how letters are smoothed: each is divided into cells, and the
// mean colours of the cells are compared.

#pragma once

#include <QStringList>

namespace view_tests {

// How the PNG files of two folders differ, in a line for each that does.
QStringList differentPictures(const QString& drawnFolder, const QString& keptFolder);

}  // namespace view_tests
