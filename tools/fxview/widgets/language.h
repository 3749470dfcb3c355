// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The language of the window's texts: English, as they stand in the code, or German, of
// fxview_de.ts. Numbers stay as the tags say, in every language.

#pragma once

#include <QApplication>

namespace fxview {

// "de", "en", or nothing for the language of the desktop. Before the first widget is made.
void useLanguage(QApplication& application, const QString& language);

}  // namespace fxview
