// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Shows the window's pages one after the other and saves a picture of each.

#pragma once

#include "tools/fxview/widgets/main_window.h"

namespace fxview {

// Ends the application behind the last page: with 0 if the window is on the screen and all tags are
// good then. Says on standard output what it saved. The window outlives the application's run.
void takePictures(MainWindow& window, const QString& folder);

}  // namespace fxview
